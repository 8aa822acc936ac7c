#include "tests/integration/Workspace.h"

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

WorkspaceTest::WorkspaceTest()
{
    // What an administrator has set is none of the tests' business.
    for (const char* variable : {"CFG_REPOSITORY", "SECM_CONNECTION", "TMR_LOG_LEVEL", "TMR_LOG_FILE"}) {
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
