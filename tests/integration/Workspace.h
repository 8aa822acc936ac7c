// A scratch folder for one test, and programs run in it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

struct Outcome {
    int status;
    std::string output;
    std::string errors;
};

class WorkspaceTest : public testing::Test {
protected:
    WorkspaceTest();
    ~WorkspaceTest() override;

    /// Skips a test with "PostgreSql" in its name when the server that they share does not run.
    void SetUp() override;

    std::string Path(const std::string& name) const { return (folder / name).string(); }
    void Write(const std::string& name, const std::string& content) const;
    static std::string Read(const std::filesystem::path& path);
    static std::string SampleText(const std::string& name) { return Read(SAMPLE_FOLDER "/" + name); }

    /// Runs a shell command in the folder.
    Outcome Run(const std::string& command) const;

    /// Makes an SQLite database of these statements.
    void MakeDatabase(const std::string& name, const std::string& statements) const;

    /// For shell commands: `Sqlite NAME FILE...` and `PostgreSql NAME FILE...` make a database of SQL files and print
    /// its connection text; `sql NAME STATEMENT` runs SQL in the latter.
    static const std::string databaseCommands;

    std::filesystem::path folder;
};

/// On the sample with logins.sql, in a database of each engine.
class EngineTest : public WorkspaceTest, public testing::WithParamInterface<const char*> {
protected:
    void SetUp() override;

    /// What the engine's own program answers, columns between "|".
    std::string Sql(const std::string& statement) const;

    const bool isPostgreSql = std::string(GetParam()) == "PostgreSql";
    std::string connection;
};

#define ON_BOTH_ENGINES(suite)                                                                                         \
    INSTANTIATE_TEST_SUITE_P(On, suite, testing::Values("Sqlite", "PostgreSql"),                                       \
                             [](const auto& engine) { return std::string(engine.param); })
