// The command line on the sample, and on everything that an administrator may get wrong.
#include "tests/RowName.h"
#include "tests/integration/Workspace.h"

#include <vector>

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

struct SampleUser {
    const char* name;
    const char* sql;
    int visibleRows;
    const char* query;
};
const std::vector<SampleUser> sampleUsers = {
    {"vera", "", 1000, ""},
    {"hugo", "department = ('Legal')", 200, R"(department:("Legal"))"},
    {"mira", "department IN ('Finance', 'Crewing')", 400, R"(department:("Finance" OR "Crewing"))"},
    {"omar", "author = ('e17')", 25, R"(author:("e17"))"},
    {"sara", "issuer IN ('BGO-PORT', 'HEAD-OFFICE')", 666, R"(issuer:("BGO-PORT" OR "HEAD-OFFICE"))"},
    {"ines", "kind IN ('invoice', 'contract')", 500, R"(kind:("invoice" OR "contract"))"},
    {"kofi", "(confidentiality = ('internal') OR published = 1)", 858,
     R"((confidentiality:("internal") OR published:1))"},
    {"lena", "(region = 'baltic' OR region = 'all')", 333, R"((region:("baltic") OR region:("all")))"},
    {"joan", "region = 'all'", 166, R"(region:("all"))"},
    {"nils", "department = ('Finance') AND kind IN ('contract', 'invoice')", 100,
     R"(department:("Finance") AND kind:("contract" OR "invoice"))"},
    {"tom", "1 = 0", 0, "NOT *:*"},
    {"somebody else", "published = 1", 286, "published:1"},
};

TEST_F(AcfilterTest, SampleUsersSeeWhatTheyMayOnBothRoads)
{
    MakeDatabase("documents.db", SampleText("documents.sql"));
    Write("users.txt", SampleText("users.txt"));
    std::string filters, queries, countStatements, counts;
    for (const SampleUser& user : sampleUsers) {
        filters += std::string(user.sql) + "\n";
        queries += std::string(user.query) + "\n";
        countStatements +=
            "SELECT count(*) FROM documents WHERE " + std::string(*user.sql != '\0' ? user.sql : "1") + ";\n";
        counts += std::to_string(user.visibleRows) + "\n";
    }
    for (const std::string road : {"", " --no-login"}) {
        EXPECT_EQ(Filter("-r documents --users-from users.txt" + road).output, filters);
        EXPECT_EQ(Filter("-r archive_search --users-from users.txt" + road).output, queries);
    }
    Write("counts.sql", countStatements);
    EXPECT_EQ(Run("sqlite3 documents.db < counts.sql").output, counts);
}

TEST_F(AcfilterTest, NamesAreTakenAsTheyAreTyped)
{
    EXPECT_EQ(Filter("-r documents hugo '[omar]' '' --format json -- --vera -- '[x,y]'").output,
              "{\"user\":\"hugo\",\"filter\":\"department = ('Legal')\"}\n"
              "{\"user\":\"[omar]\",\"filter\":\"published = 1\"}\n"
              "{\"user\":\"\",\"filter\":\"published = 1\"}\n"
              "{\"user\":\"--vera\",\"filter\":\"published = 1\"}\n"
              "{\"user\":\"--\",\"filter\":\"published = 1\"}\n"
              "{\"user\":\"[x,y]\",\"filter\":\"published = 1\"}\n");
    EXPECT_EQ(
        Run("printf 'hugo\\r\\n\\n\\r\\nom\\377\\nvera\\r' | " + acfilter +
            " filter -c archive.toml -s sqlite3://db=security.db -r documents --format json --users-from -")
            .output,
        "{\"user\":\"hugo\",\"filter\":\"department = ('Legal')\"}\n"
        "{\"user\":\"om\xEF\xBF\xBD\",\"filter\":\"published = 1\"}\n"
        "{\"user\":\"vera\\r\",\"filter\":\"published = 1\"}\n");
}

TEST_F(AcfilterTest, EnvironmentStandsInForOptions)
{
    const Outcome outcome =
        Run("export CFG_REPOSITORY=archive.toml SECM_CONNECTION=sqlite3://db=security.db TMR_LOG_LEVEL=7"
            " TMR_LOG_FILE=env.log; " +
            acfilter +
            " filter -r documents hugo --ip 10.1.1.1 --log-level 6 --log-file a.log &&"
            " " +
            acfilter + " filter -r documents hugo --ip 10.1.1.1");
    EXPECT_EQ(outcome.output, "department = ('Legal')\ndepartment = ('Legal')\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(Read(folder / "a.log"), "");
    EXPECT_THAT(Read(folder / "env.log"),
                HasSubstr(") Getting Access control filter for user: hugo, ip: 10.1.1.1\n"));
}

struct Mistake {
    const char* name;
    const char* command; ///< Behind "acfilter filter".
    int status;
    const char* error; ///< What standard error must say.
    const char* output = "";
};

class MistakeTest : public AcfilterTest, public testing::WithParamInterface<Mistake> {};

TEST_P(MistakeTest, IsSaidPlainly)
{
    Write("notes.txt", "these are notes and no database");
    Write("broken.toml", "[a]\nb = \n");
    Write("nul.txt", std::string("hugo\nve\0ra\n", 11));
    MakeDatabase("partial.db", "CREATE TABLE security_user (user_name TEXT, group_name TEXT);");
    MakeDatabase("wild.db",
                 SampleText("security.sql") +
                     "UPDATE security_permission SET permission_value = 4294967296 WHERE position = 1001;");
    MakeDatabase("texts.db",
                 SampleText("security.sql") +
                     "UPDATE security_permission SET permission_value = 'one' WHERE position = 1001;"
                     "UPDATE security_attribute SET attribute_value = CAST(x'610062' AS TEXT) WHERE "
                     "user_name = 'omar';");
    const Outcome outcome = Run(acfilter + " filter " + GetParam().command);
    EXPECT_EQ(outcome.status, GetParam().status) << outcome.errors;
    EXPECT_EQ(outcome.output, GetParam().output);
    EXPECT_THAT(outcome.errors, HasSubstr(GetParam().error));
    EXPECT_FALSE(std::filesystem::exists(folder / "missing.db"));
}

#define SAMPLE "-c archive.toml -s sqlite3://db=security.db "
INSTANTIATE_TEST_SUITE_P(
    Each, MistakeTest,
    testing::ValuesIn(std::vector<Mistake>{
        {"MissingConfiguration", "-c missing.toml -s sqlite3://db=security.db -r documents vera", 1,
         "acfilter: missing.toml:1:1: cannot be opened: No such file"},
        {"BrokenConfiguration", "-c broken.toml -s sqlite3://db=security.db -r documents vera", 1,
         "acfilter: broken.toml:2:5: "},
        {"UnknownRepository", SAMPLE "-r Documents vera", 1,
         "acfilter: archive.toml: there is no repository 'Documents'"},
        {"MissingDatabase", "-c archive.toml -s sqlite3://db=missing.db -r documents vera", 1,
         "unable to open database file"},
        {"NoDatabase", "-c archive.toml -s sqlite3://db=notes.txt -r documents vera", 1,
         "file is not a database"},
        {"MissingTable", "-c archive.toml -s sqlite3://db=partial.db -r documents vera", 1,
         "no such table: security_"},
        {"OtherDatabase", "-c archive.toml -s mysql://db=x -r documents --no-login vera", 1,
         "must begin with sqlite3:// or postgresql://"},
        {"NoDatabaseFile", "-c archive.toml -s sqlite3://security.db -r documents vera", 1,
         "write sqlite3://db=FILE"},
        {"PasswordStaysSecret", "-c archive.toml -s \"mysql://password='a secret' user=b\" -r documents vera",
         1, "'mysql://password=*** user=b'"},
        {"PermissionValueOutOfRange", "-c archive.toml -s sqlite3://db=wild.db -r documents vera hugo", 1,
         "position 1001", "\n"},
        {"PermissionValueNoNumberByName",
         "-c archive.toml -s sqlite3://db=texts.db -r documents --no-login vera hugo", 1, "position 1001",
         "\n"},
        {"NulInTheDatabase", "-c archive.toml -s sqlite3://db=texts.db -r documents omar", 1, "NUL"},
        {"LogFileCannotBeOpened", SAMPLE "-r documents --log-level 6 --log-file nowhere/a.log nobody", 0,
         "cannot open 'nowhere/a.log'", "published = 1\n"},
        {"LogGoesOnToStandardError", SAMPLE "-r documents --log-level 6 --log-file nowhere/a.log nobody", 0,
         "] SECM_AccessControlManager::", "published = 1\n"},
        {"LogLevelIsNoNumber", SAMPLE "-r documents --log-level high vera", 2, "--log-level"},
        {"MissingUsersFile", SAMPLE "-r documents --users-from missing.txt", 1,
         "acfilter: missing.txt: cannot be opened: No such file"},
        {"UsersFileIsAFolder", SAMPLE "-r documents --users-from .", 1,
         "acfilter: .: cannot be read: Is a directory"},
        {"NulInUsersFile", SAMPLE "-r documents --users-from nul.txt", 1,
         "acfilter: nul.txt:2: ", "department = ('Legal')\n"},
        {"FullDisk", SAMPLE "-r documents hugo >/dev/full", 1,
         "acfilter: standard output cannot be written: No space left"},
        {"NoConfiguration", "-s sqlite3://db=security.db -r documents vera", 2, "--config is required"},
        {"NoUser", SAMPLE "-r documents", 2, "USER or --users-from is required"},
        {"UsersTwice", SAMPLE "-r documents vera --users-from nul.txt", 2, "excludes"},
        {"UnknownOption", SAMPLE "-r documents --nologin vera", 2, "--nologin"},
        {"UnknownFormat", SAMPLE "-r documents --format xml vera", 2, "--format"},
        {"NegativeTimeout", SAMPLE "-r documents --timeout -1 vera", 2, "--timeout"},
    }),
    RowName());

} // namespace
