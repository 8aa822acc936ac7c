// A scratch folder for one test, and programs run in it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace secm::testing {

struct Outcome {
    int status;
    std::string output;
    std::string errors;
};

class WorkspaceTest : public ::testing::Test {
protected:
    WorkspaceTest();
    ~WorkspaceTest() override;

    /// Skips a test with "PostgreSql" in its name when the server that they share does not run.
    void SetUp() override;

    std::string Path(const std::string& name) const { return (folder / name).string(); }
    void Write(const std::string& name, const std::string& content) const;
    static std::string Read(const std::filesystem::path& path);
    static std::string SampleText(const std::string& name) { return Read(SAMPLE_FOLDER "/" + name); }

    /// Runs a shell script in the folder, after prelude.sh. The status is -1 when a signal ends the shell.
    Outcome Run(const std::string& command) const;

    /// Expects that a command succeeds, prints this text and nothing on standard error.
    void ExpectPrints(const std::string& command, const std::string& output) const;

    /// Makes an SQLite database, and nothing else, of these statements.
    void MakeDatabase(const std::string& name, const std::string& statements) const;

    std::filesystem::path folder;
};

/// On the sample with logins.sql, in a database of each engine.
class EngineTest : public WorkspaceTest, public ::testing::WithParamInterface<const char*> {
protected:
    void SetUp() override;

    /// What the engine's own program answers, columns between "|".
    std::string Sql(const std::string& statement) const;

    const bool isPostgreSql = std::string(GetParam()) == "PostgreSql";
    std::string connection;
};

} // namespace secm::testing

#define ON_BOTH_ENGINES(suite)                                                                                         \
    INSTANTIATE_TEST_SUITE_P(On, suite, testing::Values("Sqlite", "PostgreSql"),                                       \
                             [](const auto& engine) { return std::string(engine.param); })
