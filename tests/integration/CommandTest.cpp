// Runs the blocks of tests/cases/commands.
#include "tests/Cases.h"
#include "tests/integration/CommandBlocks.h"
#include "tests/integration/Workspace.h"

#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

using namespace secm::testing;

class CommandTest : public WorkspaceTest, public testing::WithParamInterface<CommandBlock> {
protected:
    void WriteInputs() const
    {
        Write("archive.toml", SampleText("archive.toml"));
        Write("broken.toml", "[a]\nb = \n");
        Write("names.txt", "\357\273\277hugo\r\n\n\r\nom\377\nvera");
        Write("notes.txt", "these are notes and no database");
        Write("nul.txt", std::string("hugo\nve\0ra\n", 11));
        Write("sensible.toml", Read(CASES_FOLDER "/sensible.toml"));
        Write("users.txt", SampleText("users.txt"));
    }

    // security.db, and NAME.db for each file NAME.sql in tests/cases/databases, which changes the sample.
    void MakeDatabasesIn(const std::string& script) const
    {
        const auto names = [&](const std::string& text) { return script.find(text) != std::string::npos; };
        if (names("$sample") || names("security.db")) {
            MakeDatabase("security.db", SampleText("security.sql"));
        }
        for (const auto& changes : std::filesystem::directory_iterator(CASES_FOLDER "/databases")) {
            const std::string name = changes.path().stem().string() + ".db";
            if (names(name)) {
                MakeDatabase(name, SampleText("security.sql") + Read(changes.path()));
            }
        }
    }
};

TEST_P(CommandTest, PrintsWhatItsBlockSays)
{
    const CommandBlock& block = GetParam();
    WriteInputs();
    MakeDatabasesIn(block.script);
    const Outcome outcome = Run(block.script);
    if (outcome.status == 99) { // not_here of prelude.sh
        std::cout << block.place << ": cannot be shown by this machine or this build\n";
        return;
    }
    EXPECT_EQ(Visible(outcome.output, folder), block.output) << block.place;
    EXPECT_EQ(Visible(outcome.errors, folder), block.errors) << block.place;
    EXPECT_EQ(outcome.status, block.status) << block.place;
    EXPECT_FALSE(std::filesystem::exists(Path("missing.db"))) << block.place;
}

INSTANTIATE_TEST_SUITE_P(Blocks, CommandTest, testing::ValuesIn(ReadCommandBlocks()),
                         [](const auto& block) { return block.param.name; });

TEST(CommandBlocksTest, MalformedBlocksAreRefusedWithTheirPlace)
{
    for (const auto& [text, problem] : std::vector<std::pair<std::string, std::string>>{
             {"# on the file\nls\n", "f:2: text outside of a block's parts"},
             {"--- stdout\n", "f:1: a part stands before the first block"},
             {"\n=== A b\n", "f:2: write === and a name of letters and digits"},
             {"=== A\n\n--- status 0\n", "f:4: the block before this line needs a command and a status"},
             {"=== A\nls\n=== B\n", "f:3: the block before this line needs a command and a status"},
             {"=== A\nls\n--- status 0\nx\n", "f:4: text outside of a block's parts"},
             {"=== A\nls\n--- status -1\n", "f:3: write --- status NUMBER, then"},
             {"=== A\nls\n--- stdout\n", "f:3: write --- status NUMBER, then"},
             {"=== A\nls\n--- status 0\n--- stderr\n--- stdout\n", "f:5: write --- status NUMBER, then"},
             {"=== A\nls\n--- status 0\n--- stderr\n--- stderr\n", "f:5: write --- status NUMBER, then"},
             {"=== A\nls\n--- status 0\n--- sdterr\n", "f:4: write --- status NUMBER, then"}}) {
        std::istringstream input(text);
        try {
            ParseCommandBlocks("f", input);
            ADD_FAILURE() << "taken: " << text;
        } catch (const std::runtime_error& error) {
            EXPECT_THAT(error.what(), testing::StartsWith(problem));
        }
    }
}

TEST(CommandBlocksTest, WhatATextCannotShowIsVisible)
{
    for (const auto& [text, visible] : std::map<std::string, std::string>{
             {"", ""},
             {"\n", "<EMPTY>\n"},
             {"a\n\n", "a\n<EMPTY>\n"},
             {"a", "a<END>\n"},
             {"a \n  b\t\r\n", "a<0x20>\n  b<0x09><0x0D>\n"},
             {"\xC3\xA9 \xC3\xC3\xA9\xFF\n", "\xC3\xA9 <0xC3>\xC3\xA9<0xFF>\n"},
             {"2026-11-23T14:00:00.123Z [3] [45] f (a/b:12) in /tmp/scratch, scratch-x\n",
              "<TIME> [3] [<THREAD>] f (a/b:<LINE>) in <FOLDER>, <FOLDER NAME>-x\n"}}) {
        EXPECT_EQ(Visible(text, "/tmp/scratch"), visible);
    }
}

} // namespace
