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

    std::string Path(const std::string& name) const { return (folder / name).string(); }
    void Write(const std::string& name, const std::string& content) const;
    static std::string Read(const std::filesystem::path& path);
    static std::string SampleText(const std::string& name) { return Read(SAMPLE_FOLDER "/" + name); }

    /// Runs a shell command in the folder.
    Outcome Run(const std::string& command) const;

    /// Makes an SQLite database of these statements.
    void MakeDatabase(const std::string& name, const std::string& statements) const;

    std::filesystem::path folder;
};
