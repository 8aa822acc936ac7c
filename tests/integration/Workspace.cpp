#include "tests/integration/Workspace.h"

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

WorkspaceTest::WorkspaceTest()
{
    // What an administrator has set is none of the tests' business.
    for (const char* variable :
         {"CFG_REPOSITORY", "CFG_REQUIRE_END", "SECM_CONNECTION", "TMR_LOG_LEVEL", "TMR_LOG_FILE"}) {
        unsetenv(variable);
    }
    std::string name = (std::filesystem::temp_directory_path() / "access-control-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no scratch folder");
    }
    folder = name;
}

WorkspaceTest::~WorkspaceTest()
{
    std::filesystem::remove_all(folder);
}

void WorkspaceTest::SetUp()
{
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    const std::string name = std::string(test.test_suite_name()) + "." + test.name();
    if (name.find("PostgreSql") != std::string::npos && !std::filesystem::exists(POSTGRESQL_SERVER)) {
        GTEST_SKIP() << "no PostgreSQL server; ctest starts it where Debian's postgresql-15 is installed";
    }
}

void WorkspaceTest::Write(const std::string& name, const std::string& content) const
{
    std::filesystem::create_directories(std::filesystem::path(Path(name)).parent_path());
    std::ofstream(Path(name), std::ios::binary) << content;
}

std::string WorkspaceTest::Read(const std::filesystem::path& path)
{
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

Outcome WorkspaceTest::Run(const std::string& command) const
{
    const std::string inFolder = "cd '" + folder.string() + "' && ( " + command + " ) >.output 2>.errors";
    const int status = std::system(inFolder.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Read(folder / ".output"), Read(folder / ".errors")};
}

void WorkspaceTest::MakeDatabase(const std::string& name, const std::string& statements) const
{
    Write(name + ".sql", "PRAGMA synchronous = OFF;\nBEGIN;\n" + statements + "\nCOMMIT;\n");
    const Outcome made = Run("sqlite3 -bail '" + name + "' < '" + name + ".sql'");
    ASSERT_EQ(made.status, 0) << made.errors;
}

const std::string WorkspaceTest::databaseCommands =
    "server() { command=$1 name=${PWD##*/}-$2; shift 2; " POSTGRESQL " $command " POSTGRESQL_SERVER " $name \"$@\"; }; "
    "PostgreSql() { server database \"$@\"; }; sql() { server sql \"$@\"; }; "
    "Sqlite() { name=$1; shift; cat \"$@\" | sqlite3 -bail $name.db && echo sqlite3://db=$PWD/$name.db; }; ";

void EngineTest::SetUp()
{
    WorkspaceTest::SetUp();
    connection = Run(databaseCommands + GetParam() +
                     " security " SAMPLE_FOLDER "/security.sql " CASES_FOLDER "/logins.sql | tr -d '\\n'")
                     .output;
}

std::string EngineTest::Sql(const std::string& statement) const
{
    Write("statement.sql", statement);
    const std::string program = isPostgreSql ? "sql security" : "sqlite3 -bail security.db";
    const Outcome outcome = Run(databaseCommands + program + " <statement.sql");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    return outcome.output;
}
