// The command line on the sample, and on everything that an administrator may get wrong.
#include "tests/Cases.h"
#include "tests/integration/Workspace.h"

using testing::HasSubstr;

namespace {

const std::string acfilter = ACFILTER;

class AcfilterTest : public WorkspaceTest {
protected:
    AcfilterTest()
    {
        Write("archive.toml", SampleText("archive.toml"));
        MakeDatabase("security.db", SampleText("security.sql"));
    }

    Outcome Filter(const std::string& arguments) const
    {
        return Run(acfilter + " filter -c archive.toml -s sqlite3://db=security.db " + arguments);
    }
};

TEST_F(AcfilterTest, SampleUsersSeeWhatTheyMayOnBothRoads)
{
    MakeDatabase("documents.db", SampleText("documents.sql"));
    Write("users.txt", SampleText("users.txt"));
    std::string users, counts, filters, queries, countStatements;
    for (const Lines& row : CaseRows("sample_users.txt")) {
        users += row.at(0) + "\n";
        counts += row.at(1) + "\n";
        filters += row.at(2) + "\n";
        queries += row.at(3) + "\n";
        countStatements += "SELECT count(*) FROM documents WHERE " + (row.at(2).empty() ? "1" : row.at(2)) + ";\n";
    }
    EXPECT_EQ(SampleText("users.txt"), users);
    for (const std::string road : {"", " --no-login"}) {
        EXPECT_EQ(Filter("-r documents --users-from users.txt" + road).output, filters);
        EXPECT_EQ(Filter("-r archive_search --users-from users.txt" + road).output, queries);
    }
    Write("counts.sql", countStatements);
    EXPECT_EQ(Run("sqlite3 documents.db < counts.sql").output, counts);
}

TEST_F(AcfilterTest, NamesAreTakenAsTheyAreTyped)
{
    EXPECT_EQ(Filter("-r documents --ip= hugo '[omar]' '' ++ --format json -- --vera -- '[x,y]'").output,
              "{\"user\":\"hugo\",\"filter\":\"department = ('Legal')\"}\n"
              "{\"user\":\"[omar]\",\"filter\":\"published = 1\"}\n"
              "{\"user\":\"\",\"filter\":\"published = 1\"}\n"
              "{\"user\":\"++\",\"filter\":\"published = 1\"}\n"
              "{\"user\":\"--vera\",\"filter\":\"published = 1\"}\n"
              "{\"user\":\"--\",\"filter\":\"published = 1\"}\n"
              "{\"user\":\"[x,y]\",\"filter\":\"published = 1\"}\n");
    EXPECT_EQ(Run("printf 'hugo\\r\\n\\n\\r\\nom\\377\\nvera\\r' | " + acfilter +
                  " filter -c archive.toml -s sqlite3://db=security.db -r documents --format json --users-from -")
                  .output,
              "{\"user\":\"hugo\",\"filter\":\"department = ('Legal')\"}\n"
              "{\"user\":\"om\xEF\xBF\xBD\",\"filter\":\"published = 1\"}\n"
              "{\"user\":\"vera\\r\",\"filter\":\"published = 1\"}\n");
}

TEST_F(AcfilterTest, EnvironmentStandsInForOptions)
{
    const std::string command = acfilter + " filter -r documents --ip 10.1.1.1 hugo";
    const Outcome outcome =
        Run("export CFG_REPOSITORY=archive.toml SECM_CONNECTION=sqlite3://db=security.db TMR_LOG_LEVEL=7"
            " TMR_LOG_FILE=env.log; " +
            command + " && " + command + " --log-level 6 --log-file option.log");
    EXPECT_EQ(outcome.output, "department = ('Legal')\ndepartment = ('Legal')\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(Read(folder / "option.log"), "");
    const std::string unusable =
        "TMR_LOG_LEVEL=loud " + acfilter + " filter -c archive.toml -s sqlite3://db=nowhere -r documents hugo";
    EXPECT_THAT(Run(unusable).errors,
                testing::StartsWith("TMR_LOG_LEVEL: 'loud' is not a whole number; logging at level 3\n"));
}

TEST_F(AcfilterTest, LogLinesCannotBeForged)
{
    Write("a.log", "before\n");
    Filter(
        "-r documents --log-level 7 --log-file a.log --ip 'a\\x0a' \"$(printf 'a\\n\\tb\\177\\033[31m\\303\\251')\"");
    const Lines lines = Split(Read(folder / "a.log"), "\n");
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[0] + lines[3], "before");
    EXPECT_THAT(lines[1], testing::MatchesRegex(
                              "....-..-..T..:..:..\\....Z \\[7\\] SECM_AccessControlManager::GetAccessControlFilter "
                              "\\(SECM_AccessControl/SECM_AccessControlManager:[0-9]+\\) Getting Access .*"));
    EXPECT_THAT(lines[1], testing::EndsWith(" for user: a\\x0a\\x09b\\x7f\\x1b[31m\xC3\xA9, ip: a\\\\x0a"));
}

class MistakeTest : public AcfilterTest, public testing::WithParamInterface<Lines> {};

TEST_P(MistakeTest, IsSaidPlainly)
{
    Write("notes.txt", "these are notes and no database");
    Write("broken.toml", "[a]\nb = \n");
    Write("nul.txt", std::string("hugo\nve\0ra\n", 11));
    MakeDatabase("partial.db", "CREATE TABLE security_user (user_name TEXT, group_name TEXT);");
    const std::string spoil = SampleText("security.sql") + "UPDATE security_permission SET permission_value = ";
    MakeDatabase("wild.db", spoil + "4294967296 WHERE position = 1001;"
                                    "INSERT INTO security_permission VALUES (1, 'user', '', 'p', -1, NULL, 0);");
    MakeDatabase("texts.db", spoil + "'one' WHERE position = 1001; UPDATE security_attribute SET attribute_value = "
                                     "CAST(x'610062' AS TEXT) WHERE user_name = 'omar';");
    MakeDatabase(
        "lax.db",
        SampleText("security.sql") +
            "DROP TABLE security_attribute; CREATE TABLE security_attribute "
            "(user_name TEXT, attribute_name TEXT, attribute_value TEXT); INSERT INTO security_attribute VALUES "
            "('omar', 'employee_id', '1'), ('omar', 'employee_id', '2'), ('lena', 'region', NULL);");
    const Outcome outcome = Run("S='-c archive.toml -s sqlite3://db=security.db -r documents'; " + acfilter +
                                " filter " + GetParam().at(2));
    EXPECT_EQ(std::to_string(outcome.status), GetParam().at(1)) << outcome.errors;
    EXPECT_THAT(outcome.errors, HasSubstr(GetParam().at(3)));
    EXPECT_EQ(outcome.output, GetParam().at(4));
    EXPECT_THAT(Run("ls *missing* 2>&1").output, testing::Not(testing::HasSubstr("missing.db\n")));
}

INSTANTIATE_TEST_SUITE_P(Table, MistakeTest, testing::ValuesIn(CaseRows("mistakes.txt")), CaseName);

} // namespace
