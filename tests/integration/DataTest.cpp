// Filters run on rows: the same answers from each engine, and nothing that a filter contains does more than read.
#include "analysis/data/DataSource.h"
#include "analysis/trace/Trace.h"
#include "tests/integration/Workspace.h"

#include <functional>
#include <iterator>
#include <random>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using namespace secm::testing;
namespace analysis = secm::analysis;
using analysis::ColumnValue;
using analysis::DataError;
using analysis::DataSource;
using analysis::FilterRefused;
using analysis::OpenData;
using analysis::OpenDataOfStatements;

// Row 4 has no area, so comparisons with it are neither true nor false.
const std::string rows = R"(CREATE TABLE documents (id INTEGER PRIMARY KEY, area TEXT, pages INTEGER);
INSERT INTO documents VALUES (1, 'north', 3), (2, 'south', 5), (3, 'it''s', 5), (4, NULL, 9), (10, 'north', 1);
CREATE TABLE secrets (word TEXT);
INSERT INTO secrets VALUES ('sesame');
)";

template <class Error>
std::string MessageOf(const std::function<void()>& question)
{
    try {
        question();
    } catch (const Error& error) {
        return error.what();
    }
    return "no exception of this type";
}

class DataTest : public EngineTest {
protected:
    void SetUp() override
    {
        WorkspaceTest::SetUp();
        Write("rows.sql", rows);
        const Outcome made = Run(std::string(GetParam()) + " security rows.sql");
        ASSERT_EQ(made.errors, "");
        connection = made.output.substr(0, made.output.find('\n'));
    }

    std::unique_ptr<DataSource> Open(const std::string& key = "id", const std::string& table = "documents",
                                     unsigned timeoutSeconds = 20) const
    {
        return OpenData({connection, table, key, timeoutSeconds});
    }

    std::string OpeningError(const std::string& key, const std::string& table) const
    {
        return MessageOf<DataError>([&] { Open(key, table); });
    }
};

TEST_P(DataTest, GivesWhatAFilterLetsThrough)
{
    const auto data = Open();
    EXPECT_EQ(data->Count(std::nullopt), 5U);
    EXPECT_EQ(data->Count("area = 'north' -- with a comment"), 2U);
    EXPECT_EQ(data->Count("area = 'it''s' OR pages = 9"), 2U);
    EXPECT_EQ(data->Count("1 = 0"), 0U);
    EXPECT_TRUE(data->Matches("pages > 4 OR area = 'x'", "2"));
    EXPECT_FALSE(data->Matches("pages > 4 OR area = 'x'", "1"));
    EXPECT_FALSE(data->Matches("NOT area = 'north'", "4")) << "a comparison with NULL is not true";
    for (const char* missing : {"11", "", "north", "1 OR 1=1", "99999999999999999999"}) {
        EXPECT_FALSE(data->Matches(std::nullopt, missing)) << missing;
        EXPECT_FALSE(data->Matches("1 = 1", missing)) << missing;
        EXPECT_THAT(data->Row(missing), IsEmpty()) << missing;
    }
    EXPECT_THAT(data->Keys("area = 'north'", 5), ElementsAre("1", "10"));
    EXPECT_THAT(data->Keys(std::nullopt, 2), ElementsAre("1", "2"));
    using Column = ColumnValue;
    EXPECT_THAT(data->Row("4"), ElementsAre(Column{"id", "4"}, Column{"area", std::nullopt}, Column{"pages", "9"}));
}

TEST_P(DataTest, ComparesTwoFilters)
{
    const auto data = Open();
    const analysis::RowDifference difference = data->Difference("pages > 2", "area = 'north'", 2);
    EXPECT_EQ(difference.count, 3U) << "that of NULL is one of them";
    EXPECT_THAT(difference.keys, ElementsAre("2", "3"));
    EXPECT_EQ(data->Difference("area = 'north'", std::nullopt, 1).count, 0U);
    EXPECT_EQ(data->Difference(std::nullopt, "area = 'north'", 0).count, 3U);
    const auto withoutKey = Open("");
    EXPECT_EQ(withoutKey->Difference(std::nullopt, "1 = 0", 0).count, 5U);
    EXPECT_THAT(MessageOf<DataError>([&] { withoutKey->Matches("1 = 1", "1"); }), HasSubstr("no key column is named"));
}

TEST_P(DataTest, RefusesFiltersThatAreMoreThanACondition)
{
    const auto data = Open();
    for (const std::string& filter :
         {std::string("area = 'it's'"), std::string("area = 'north') OR (1 = 1"), std::string("1 = 1) --"),
          std::string("1 = 1; DELETE FROM documents"), std::string("1 = 1;"), std::string("1 = 1 GROUP BY id"),
          std::string("1 = 1 UNION SELECT 9"), std::string("1 = 1 /* open"), std::string("1 = 1 LIMIT 1"),
          std::string("area = ?"), std::string("id = $1"), std::string("nothing = 1"),
          std::string("1 = 1\0AND 1 = 0", 15), std::string("area = 'north' AND"), std::string(")"), std::string(" ")}) {
        EXPECT_THROW(data->Count(filter), FilterRefused) << filter;
        EXPECT_THROW(data->Matches(filter, "1"), FilterRefused) << filter;
        EXPECT_THROW(data->Keys(filter, 1), FilterRefused) << filter;
        EXPECT_THROW(data->Difference("1 = 1", filter, 1), FilterRefused) << filter;
        EXPECT_THROW(data->Difference(filter, std::nullopt, 1), FilterRefused) << filter;
    }
    EXPECT_EQ(data->Count("pages = 5"), 2U) << "it can still be asked";
}

TEST_P(DataTest, SaysWhatIsMissing)
{
    EXPECT_THAT(OpeningError("id", "folders"), HasSubstr("there is no table or view 'folders'"));
    EXPECT_THAT(OpeningError("number", "documents"),
                HasSubstr("has no column 'number'; its columns are id, area, pages"));
    EXPECT_THAT(OpeningError("", ""), HasSubstr("no table is named"));
}

TEST_P(DataTest, LetsNoFilterDoMoreThanRead)
{
    const auto data = Open();
    const std::vector<std::string> filters =
        isPostgreSql
            ? std::vector<std::string>{"nextval('numbers') > 0", "pg_read_file('PG_VERSION') <> ''",
                                       "lo_import('/etc/hostname') > 0", "set_config('role', 'postgres', false) <> ''",
                                       "set_config('transaction_read_only', 'off', true) <> ''"}
            : std::vector<std::string>{"(SELECT word FROM secrets) <> ''", "(SELECT count(*) FROM secrets) > 0",
                                       "(SELECT count(*) FROM sqlite_schema) > 0",
                                       "(SELECT count(*) FROM pragma_table_info('secrets')) > 0",
                                       "load_extension('x') IS NULL"};
    if (isPostgreSql) {
        Run("sql security 'CREATE SEQUENCE numbers; GRANT ALL ON SEQUENCE numbers TO reader'");
    }
    for (const std::string& filter : filters) {
        EXPECT_THROW(data->Count(filter), FilterRefused) << filter;
    }
    EXPECT_EQ(data->Count("pages IN (SELECT max(pages) FROM documents)"), 1U) << "reading the table is allowed";
}

TEST_P(DataTest, EndsWhatTakesTooLong)
{
    const auto data = Open("id", "documents", 1);
    const std::string endless =
        isPostgreSql
            ? "pg_sleep(60) IS NULL"
            : "(SELECT count(*) FROM documents a, documents b, documents c, documents d, documents e, documents "
              "f, documents g, documents h, documents i, documents j, documents k, documents l) > 0";
    EXPECT_THAT(MessageOf<FilterRefused>([&] { data->Count(endless); }), HasSubstr("not finished within 1 s"));
    EXPECT_EQ(data->Count("1 = 1"), 5U);
}

// Random conditions, so that what is counted directly, what is put in parentheses, single rows and differences agree.
class RandomConditions {
public:
    explicit RandomConditions(unsigned seed) : random(seed) {}

    std::string Next(int depth = 3)
    {
        switch (depth == 0 ? Pick(3) : Pick(8)) {
        case 0:
            return "area = '" + Value() + "'";
        case 1:
            return "pages " + std::string(Pick(2) == 0 ? "<" : ">=") + " " + std::to_string(Pick(6));
        case 2:
            return "area IN ('" + Value() + "', '" + Value() + "')";
        case 3:
            return "(" + Next(depth - 1) + ")";
        case 4:
            return "NOT (" + Next(depth - 1) + ")";
        case 5:
            return Next(depth - 1) + " -- " + Value() + "\n";
        case 6:
            return Next(depth - 1) + " OR " + Next(depth - 1);
        default:
            return Next(depth - 1) + " AND " + Next(depth - 1);
        }
    }

private:
    unsigned Pick(unsigned count) { return std::uniform_int_distribution<unsigned>(0, count - 1)(random); }

    std::string Value()
    {
        const char* values[] = {"north", "south",        "it''s", "UNION", "x ORDER BY 1",
                                "(",     "a) OR (1 = 1", "--",    "%",     ";"};
        return values[Pick(std::size(values))];
    }

    std::mt19937 random;
};

TEST_P(DataTest, CountsAsItMatchesAndCompares)
{
    const auto data = Open();
    RandomConditions conditions(7);
    unsigned long long seen = 0;
    for (int round = 0; round < 150; ++round) {
        const std::string one = conditions.Next();
        const std::string other = conditions.Next();
        const std::uint64_t count = data->Count(one);
        std::uint64_t matches = 0;
        for (const char* key : {"1", "2", "3", "4", "10"}) {
            matches += data->Matches(one, key) ? 1U : 0U;
        }
        EXPECT_EQ(count, matches) << one;
        EXPECT_EQ(count, data->Keys(one, 9).size()) << one;
        EXPECT_EQ(data->Difference(one, other, 0).count + data->Count("(" + one + "\n) AND (" + other + "\n)"), count)
            << one << " without " << other;
        EXPECT_EQ(data->Difference(std::nullopt, one, 9).count, 5 - count) << one;
        seen += count;
    }
    EXPECT_GT(seen, 100U) << "the conditions find something";
}

// Values that a template puts between its quotes, as a careless host would pass them on.
TEST_P(DataTest, SurvivesHostileValues)
{
    const auto data = Open();
    const std::string before = Sql("SELECT count(*), sum(pages) FROM documents; SELECT * FROM secrets");
    const char* values[] = {"x'; DELETE FROM documents; --",
                            "x'; DROP TABLE secrets; --",
                            "' OR (SELECT count(*) FROM secrets) > 0 OR '",
                            "' UNION SELECT word FROM secrets --",
                            "' || (SELECT word FROM secrets) || '",
                            "'; COMMIT; DELETE FROM documents; BEGIN; --",
                            "'; SET statement_timeout = 0; --",
                            "'; ATTACH 'stolen.db' AS stolen; --",
                            "'; COPY secrets TO '/tmp/stolen'; --",
                            "'; PRAGMA writable_schema = 1; --",
                            "' AND 1 = (SELECT 1 FROM documents FOR UPDATE) OR '",
                            "'); UPDATE documents SET pages = 0; --"};
    for (const char* value : values) {
        const std::string filter = std::string("area = '") + value + "'";
        try {
            data->Count(filter);
        } catch (const FilterRefused&) {
            // as it should be
        }
        EXPECT_EQ(data->Count(std::nullopt), 5U) << filter;
    }
    EXPECT_EQ(Sql("SELECT count(*), sum(pages) FROM documents; SELECT * FROM secrets"), before);
    EXPECT_FALSE(std::filesystem::exists("stolen.db"));
    EXPECT_FALSE(std::filesystem::exists("/tmp/stolen"));
}

ON_BOTH_ENGINES(DataTest);

class PostgreSqlDataTest : public DataTest {};

TEST_P(PostgreSqlDataTest, TakesNoRoleThatMayDoMore)
{
    // A role of this test, with the password of the reader, because tests share the server.
    const std::string role = folder.filename().string();
    Sql("DO $$ BEGIN EXECUTE format('CREATE ROLE %I LOGIN PASSWORD %L', '" + role +
        "', (SELECT rolpassword FROM pg_authid WHERE rolname = 'reader')); END $$;"
        "GRANT pg_read_server_files TO \"" +
        role + "\"; ALTER ROLE \"" + role + "\" NOINHERIT");
    const std::size_t user = connection.find("user=reader");
    ASSERT_NE(user, std::string::npos) << connection;
    for (const auto& [name, rights] : {std::pair(role, "pg_read_server_files"), {"postgres", "postgres, "}}) {
        connection.replace(user, connection.find(' ', user) - user, "user=" + name);
        const std::string error = OpeningError("id", "documents");
        EXPECT_THAT(error, HasSubstr("the role '" + name + "' has the rights of "));
        EXPECT_THAT(error, HasSubstr(rights));
        EXPECT_THAT(error, HasSubstr("GRANT SELECT ON documents TO"));
    }
    Sql("DROP ROLE \"" + role + "\"");
}

TEST_P(PostgreSqlDataTest, KeepsNothingOfAFilter)
{
    const auto data = Open("id", "documents", 1);
    EXPECT_EQ(data->Count("pg_try_advisory_lock(7) AND set_config('statement_timeout', '0', false) = '0'"), 5U);
    EXPECT_EQ(Sql("SELECT count(*) FROM pg_locks WHERE locktype = 'advisory' AND objid = 7"), "0\n");
    EXPECT_THROW(data->Count("pg_sleep(60) IS NULL"), FilterRefused) << "the limit holds for the next question";
}

TEST_P(PostgreSqlDataTest, NoticesThatTheServerIsLost)
{
    const auto data = Open();
    Sql("SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE usename = 'reader' AND datname = "
        "current_database()");
    EXPECT_THROW(data->Count("1 = 1"), DataError);
}

INSTANTIATE_TEST_SUITE_P(On, PostgreSqlDataTest, testing::Values("PostgreSql"),
                         [](const auto& engine) { return std::string(engine.param); });

class StatementsTest : public WorkspaceTest {
protected:
    static std::string ErrorOf(const std::string& statements)
    {
        return MessageOf<DataError>([&] { OpenDataOfStatements(statements, {"rows.sql", "documents", "id", 1}); });
    }
};

TEST_F(StatementsTest, MakeADatabaseOfTheirOwn)
{
    const auto data = OpenDataOfStatements(rows + "-- the end", {"rows.sql", "documents", "id", 1});
    EXPECT_THAT(data->Keys("pages = 5", 9), ElementsAre("2", "3"));
    EXPECT_THROW(data->Count("(SELECT word FROM secrets) <> ''"), FilterRefused);

    const std::string file = Path("other.db");
    EXPECT_THAT(ErrorOf(rows + "ATTACH '" + file + "' AS other;"),
                testing::StartsWith("rows.sql:5:1: statements here must not attach other files"));
    EXPECT_THAT(ErrorOf(rows + "VACUUM INTO '" + file + "';"), HasSubstr("must not attach other files"));
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_THAT(ErrorOf(rows + "\n\nSELECT 1 FRO x;"), testing::StartsWith("rows.sql:7:14: near \"x\""));
    EXPECT_THAT(ErrorOf(rows + "INSERT INTO documents\nVALUES (1, 'again', 1);"),
                testing::StartsWith("rows.sql:5:1: UNIQUE constraint failed"));
    EXPECT_THAT(ErrorOf("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i FROM n) SELECT count(*) FROM n;"),
                testing::StartsWith("rows.sql:1:1: not finished within 1 s"));
    EXPECT_THAT(ErrorOf(std::string("SELECT 1;\n\0", 11)), testing::StartsWith("rows.sql:2:1: a NUL character"));
}

TEST_F(StatementsTest, CompareKeysOfColumnsWithoutAType)
{
    const auto data = OpenDataOfStatements(
        "CREATE TABLE t (k, b BLOB); INSERT INTO t VALUES (1, 2), ('1', 3), ('x', 4)", {"rows.sql", "T", "K", 1});
    EXPECT_TRUE(data->Matches("b = 2", "1"));
    EXPECT_TRUE(data->Matches("b = 4", "x"));
    EXPECT_FALSE(data->Matches("b = 4", "1"));
}

// Programs that answer questions about rows.
class CommandDataTest : public WorkspaceTest {
protected:
    std::unique_ptr<DataSource> Open(const std::string& script, unsigned timeoutSeconds = 20) const
    {
        Write("engine", "#!/bin/sh\n" + script);
        std::filesystem::permissions(Path("engine"), std::filesystem::perms::owner_all);
        return OpenData({"command:" + Path("engine") + " first  second", "", "", timeoutSeconds});
    }

    // Of a program that gives this answer to everything.
    std::unique_ptr<DataSource> Answering(const std::string& answer) const
    {
        return Open("while read -r line; do printf '%s\\n' '" + answer + "'; done");
    }
};

TEST_F(CommandDataTest, IsAskedInLinesOfJson)
{
    const auto data = Open(R"(echo "$# $1 $2" >arguments
cd "${0%/*}"
while read -r line; do
    printf '%s\n' "$line" >>questions
    case $line in
    *count*) echo '{"count":12,"more":[]}' ;;
    *matches*) echo '{"matches":true}' ;;
    *keys*) echo '{"keys":["17","a b"]}' ;;
    *) echo '{"count":2,"keys":["17"]}' ;;
    esac
done)");
    EXPECT_EQ(data->Count("area:\"no\nth\""), 12U);
    EXPECT_EQ(data->Count(std::nullopt), 12U);
    EXPECT_TRUE(data->Matches("a", "1\"7"));
    EXPECT_THAT(data->Keys(std::nullopt, 2), ElementsAre("17", "a b"));
    EXPECT_EQ(data->Difference("a", std::nullopt, 1).count, 2U);
    EXPECT_THAT(data->Row("17"), IsEmpty());
    EXPECT_EQ(Read(folder / "questions"), R"({"count":"area:\"no\nth\""}
{"count":null}
{"key":"1\"7","matches":"a"}
{"keys":null,"limit":2}
{"difference":["a",null],"limit":1}
)");
}

TEST_F(CommandDataTest, MustAnswerWhatWasAsked)
{
    for (const char* answer : {"", "12", "{", "{}", "{\"count\":-1}", "{\"count\":1.5}", "{\"count\":\"1\"}",
                               "{\"keys\":[]}", "{\"count\":1} x"}) {
        EXPECT_THAT(MessageOf<DataError>([&] { Answering(answer)->Count("a"); }), HasSubstr("expected ")) << answer;
    }
    for (const char* answer : {"{\"keys\":[\"1\",\"2\"]}", "{\"keys\":[1]}", "{\"keys\":\"1\"}"}) {
        EXPECT_THROW(Answering(answer)->Keys("a", 1), DataError) << answer;
    }
    for (const char* answer : {"{\"count\":0,\"keys\":[\"1\"]}", "{\"count\":1,\"keys\":[]}", "{\"count\":1}"}) {
        EXPECT_THROW(Answering(answer)->Difference("a", "b", 1), DataError) << answer;
    }
    EXPECT_THROW(Answering("{\"matches\":1}")->Matches("a", "1"), DataError);
    const auto refusing = Answering("{\"error\":\"no such field: x\"}");
    EXPECT_EQ(MessageOf<FilterRefused>([&] { refusing->Count("x:1"); }), "no such field: x");
    EXPECT_THAT(MessageOf<DataError>([&] { refusing->Count(std::nullopt); }), HasSubstr("says: no such field: x"));
    EXPECT_THROW(refusing->Count("\xff"), FilterRefused);
}

TEST_F(CommandDataTest, MayDieHangOrBeMissing)
{
    EXPECT_THAT(MessageOf<DataError>([&] { Open("echo 'index is locked' >&2; exit 4")->Count("a"); }),
                HasSubstr("engine' ended with status 4; it wrote: index is locked"));
    EXPECT_THAT(MessageOf<DataError>([&] { Open("read -r line; kill -9 $$")->Count("a"); }),
                HasSubstr("was ended by signal 9, and wrote nothing"));
    EXPECT_THAT(MessageOf<DataError>([] {
                    OpenData({"command:no-such-program x", "", "", 1});
                }),
                HasSubstr("cannot start 'no-such-program': No such file or directory"));
    EXPECT_THAT(MessageOf<DataError>([] { OpenData({"command: ", "", "", 1}); }), HasSubstr("no program is named"));
    EXPECT_THAT(MessageOf<DataError>([] { OpenData({"mysql://db=x", "t", "", 1}); }), HasSubstr("command:PROGRAM"));

    // Started anew after it hung, so that a late answer is not taken for that of the next question.
    const auto hanging = Open(R"(while read -r line; do
    case $line in *slow*) sleep 2; echo '{"count":1}' ;; *) echo '{"count":2}' ;; esac
done)",
                              1);
    EXPECT_EQ(MessageOf<FilterRefused>([&] { hanging->Count("slow"); }), "not finished within 1 s");
    EXPECT_EQ(hanging->Count("fast"), 2U);
}

TEST_F(CommandDataTest, TakesLongLinesWhileItWrites)
{
    const auto data = Open(R"(head -c 300000 /dev/zero | tr '\0' x >&2
while read -r line; do printf '{"count":%d}\n' "${#line}"; done)");
    EXPECT_EQ(data->Count(std::string(1'000'000, 'f')), 1'000'012U);
}

TEST(RowFilterTest, IsNoneWhereHostsApplyNone)
{
    EXPECT_EQ(analysis::RowFilterOf({"", analysis::Outcome::hideAll}), std::nullopt);
    EXPECT_EQ(analysis::RowFilterOf({"1 = 0", analysis::Outcome::hideAll}), "1 = 0");
}

} // namespace
