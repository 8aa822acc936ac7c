// Runs the statements of docs/operations.md as they are printed there, on both databases.
#include "tests/Cases.h"
#include "tests/integration/Workspace.h"

#include <stdexcept>

namespace {

using namespace secm::testing;

class OperationsTest : public EngineTest {
protected:
    // The blocks of SQL below a heading of the page, up to the next heading.
    static Lines BlocksBelow(const std::string& heading)
    {
        const std::string page = Read(SAMPLE_FOLDER "/../../docs/operations.md");
        const Lines parts = Split(page, "\n" + heading + "\n");
        if (parts.size() != 2) {
            throw std::runtime_error("docs/operations.md needs the heading '" + heading + "' once");
        }
        Lines blocks = Split(Split(parts.back(), "\n#").front(), "```sql\n");
        blocks.erase(blocks.begin());
        for (std::string& block : blocks) {
            block = Split(block, "```\n").front();
        }
        return blocks;
    }

    // What the users see, by log-in and by name.
    std::string Filter(const std::string& users) const
    {
        Write("archive.toml", SampleText("archive.toml"));
        const std::string command = "acfilter filter -c archive.toml -r documents -s '" + connection + "' " + users;
        const Outcome byLogIn = Run(command);
        EXPECT_EQ(byLogIn.errors, "");
        EXPECT_EQ(Run(command + " --no-login").output, byLogIn.output);
        return byLogIn.output;
    }
};

ON_BOTH_ENGINES(OperationsTest);

TEST_P(OperationsTest, EachEverydayChangeHasItsEffectAndNoOther)
{
    struct Change {
        const char* heading;
        const char* user;
        const char* before;
        const char* after;
    };
    for (const Change& change : std::vector<Change>{
             {"### A user is added", "anna", "published = 1\n",
              "department = ('Legal') AND kind IN ('contract', 'invoice')\n"},
             {"### A user moves to another group", "omar", "author = ('e17')\n", "region = 'all'\n"},
             {"### A group gets another name", "nils", "department = ('Finance') AND kind IN ('contract', 'invoice')\n",
              "department = ('Finance') AND kind IN ('contract', 'invoice')\n"},
             {"### A grant is given", "tom", "1 = 0\n", "department = ('Crewing')\n"},
             {"### A grant is taken back", "tom", "department = ('Crewing')\n", "1 = 0\n"},
             {"### A user is removed", "lena", "(region = 'baltic' OR region = 'all')\n", "published = 1\n"}}) {
        const Lines blocks = BlocksBelow(change.heading);
        ASSERT_EQ(blocks.size(), 1U) << change.heading;
        EXPECT_EQ(Filter(change.user), change.before) << change.heading;
        const std::string unchanged = Filter("hugo mira sara joan vera");
        EXPECT_EQ(Sql(blocks.front()), "") << change.heading;
        EXPECT_EQ(Filter(change.user), change.after) << change.heading;
        EXPECT_EQ(Filter("hugo mira sara joan vera"), unchanged) << change.heading;
    }
}

TEST_P(OperationsTest, ANewUserInheritsNothingFromOneWhoWasRemoved)
{
    Sql(BlocksBelow("### A user is removed").front());
    EXPECT_EQ(Sql("SELECT (SELECT count(*) FROM security_user WHERE user_name = 'lena')"
                  " + (SELECT count(*) FROM security_attribute WHERE user_name = 'lena')"
                  " + (SELECT count(*) FROM security_permission WHERE grantee = 'lena')"),
              "0\n");
    // Somebody else removed this user, and forgot the grants.
    Sql("INSERT INTO security_permission VALUES (9001, 'user', 'anna', 'archive.kind', 1, NULL, 0)");
    Sql(BlocksBelow("### A user is added").front());
    EXPECT_EQ(Filter("anna"), "department = ('Legal') AND kind IN ('contract', 'invoice')\n");
    // A change that fails changes nothing, here not the grants of a user who is there already.
    Write("change.sql", BlocksBelow("### A user is added").front());
    EXPECT_NE(Run(std::string(isPostgreSql ? "sql security" : "sqlite3 -bail security.db") + " <change.sql").status, 0);
    EXPECT_EQ(Filter("anna"), "department = ('Legal') AND kind IN ('contract', 'invoice')\n");
}

TEST_P(OperationsTest, AnOlderDatabaseGetsTheTablesOfToday)
{
    std::string older = SampleText("security.sql");
    for (const std::string part :
         {" ON DELETE CASCADE",
          "CREATE INDEX security_permission_grantee ON security_permission (grantee_type, grantee, position);\n"}) {
        ASSERT_NE(older.find(part), std::string::npos);
        older.erase(older.find(part), part.size());
    }
    // Only SQLite may hold attributes of nobody.
    const std::string orphan = "INSERT INTO security_attribute VALUES ('ghost', 'region', 'baltic');\n";
    Write("older.sql", older + (isPostgreSql ? "" : orphan));
    const Outcome made = Run(std::string(GetParam()) + " older older.sql");
    ASSERT_EQ(made.errors, "");
    const Lines blocks = BlocksBelow("## Databases that were made before");
    ASSERT_EQ(blocks.size(), 2U);
    Write("today.sql", blocks.at(isPostgreSql ? 1 : 0));
    Write("remove.sql", std::string(isPostgreSql ? "" : "PRAGMA foreign_keys = ON;\n") +
                            "DELETE FROM security_user WHERE user_name = 'lena';\n"
                            "SELECT user_name, attribute_value FROM security_attribute ORDER BY user_name;\n");
    const std::string program = isPostgreSql ? "sql older" : "sqlite3 -bail older.db";
    const Outcome changed = Run(program + " <today.sql");
    EXPECT_EQ(changed.errors, "");
    EXPECT_EQ(changed.output, isPostgreSql ? "" : "ghost|region\n");
    EXPECT_EQ(Run(program + " <remove.sql").output, isPostgreSql ? "omar|e17\n" : "ghost|baltic\nomar|e17\n");
    connection = Split(made.output, "\n").front();
    EXPECT_EQ(Filter("omar lena"), "author = ('e17')\npublished = 1\n");
}

} // namespace
