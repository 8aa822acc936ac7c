#include "tests/integration/Workspace.h"

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace secm::testing {

WorkspaceTest::WorkspaceTest()
{
    // Neither what the caller's environment sets nor what an earlier test of this process set.
    for (const char* variable :
         {"CFG_REPOSITORY", "CFG_REQUIRE_END", "NO_COLOR", "SECM_ALLOWED_ATTRIBUTES", "SECM_ALLOWED_RESOURCES",
          "SECM_CONNECTION", "SECM_QUICK_CHECK", "TMR_LOG_FILE", "TMR_LOG_LEVEL"}) {
        unsetenv(variable);
    }
    for (const auto& [variable, value] : std::map<const char*, const char*>{{"PROGRAMS", PROGRAM_FOLDER},
                                                                            {"LIBRARIES", LIBRARY_FOLDER},
                                                                            {"SAMPLE", SAMPLE_FOLDER},
                                                                            {"CASES", CASES_FOLDER},
                                                                            {"POSTGRESQL", POSTGRESQL},
                                                                            {"POSTGRESQL_SERVER", POSTGRESQL_SERVER}}) {
        setenv(variable, value, 1);
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
    const ::testing::TestInfo& test = *::testing::UnitTest::GetInstance()->current_test_info();
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
    const std::string inFolder =
        "cd '" + folder.string() + "' && . '" PRELUDE "' && (\n" + command + "\n) >.output 2>.errors";
    const int status = std::system(inFolder.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Read(folder / ".output"), Read(folder / ".errors")};
}

void WorkspaceTest::ExpectPrints(const std::string& command, const std::string& output) const
{
    const Outcome outcome = Run(command);
    EXPECT_EQ(outcome.output, output) << command;
    EXPECT_EQ(outcome.errors, "") << command;
    EXPECT_EQ(outcome.status, 0) << command;
}

void WorkspaceTest::MakeDatabase(const std::string& name, const std::string& statements) const
{
    Write(".sql", "PRAGMA synchronous = OFF;\nBEGIN;\n" + statements + "\nCOMMIT;\n");
    const Outcome made = Run("sqlite3 -bail '" + name + "' <.sql");
    std::filesystem::remove(Path(".sql"));
    ASSERT_EQ(made.status, 0) << made.errors;
    ASSERT_EQ(made.errors, "");
}

void EngineTest::SetUp()
{
    WorkspaceTest::SetUp();
    const Outcome made = Run(std::string(GetParam()) + " security $SAMPLE/security.sql $CASES/logins.sql");
    ASSERT_EQ(made.errors, "");
    connection = made.output.substr(0, made.output.find('\n'));
}

std::string EngineTest::Sql(const std::string& statement) const
{
    Write("statement.sql", statement);
    const std::string program = isPostgreSql ? "sql security" : "sqlite3 -bail security.db";
    const Outcome outcome = Run(program + " <statement.sql");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    return outcome.output;
}

} // namespace secm::testing
