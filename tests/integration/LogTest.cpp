#include "platform/logging/Tmr_LogFile.h"
#include "tests/Cases.h"
#include "tests/integration/Workspace.h"

#include <thread>

namespace {

class LogTest : public WorkspaceTest {
protected:
    LogTest()
    {
        setenv("TMR_LOG_LEVEL", "6", 1);
        setenv("TMR_LOG_FILE", Path("a.log").c_str(), 1);
        Write("a.log", "before\n");
    }

    ~LogTest() override
    {
        unsetenv("TMR_LOG_LEVEL");
        unsetenv("TMR_LOG_FILE");
    }

    void Say(int level, const std::string& text)
    {
        if (log.StoreParams("source", "Class::Function", 12, level, 197, 1) != 0) {
            log.Log("%s", text.c_str());
        }
    }

    /// The log's lines, without their times and what stands behind the last line end (nothing).
    Lines Written() const
    {
        Lines lines = Split(Read(folder / "a.log"), "\n");
        EXPECT_EQ(lines.front() + lines.back(), "before");
        lines.pop_back();
        lines.erase(lines.begin());
        for (std::string& line : lines) {
            EXPECT_THAT(line, testing::MatchesRegex("....-..-..T..:..:..\\....Z \\[.\\] .*"));
            line.erase(0, std::string("2026-11-22T19:34:58.123Z ").size());
        }
        return lines;
    }

    Tmr_LogFile log;
};

TEST_F(LogTest, WritesWantedMessagesEachInOneLine)
{
    for (const std::string message : {"plain\n", "two ends\n\n", "a\\x0a\tb\x7f\x1b[31m\xC3\xA9", ""}) {
        Say(7, message);
        Say(6, message);
    }
    Say(3, "failure");
    const std::string origin = "[6] Class::Function (source:12) ";
    EXPECT_THAT(Written(), testing::ElementsAre(origin + "plain", origin + "two ends\\x0a",
                                                origin + "a\\\\x0a\\x09b\\x7f\\x1b[31m\xC3\xA9", origin,
                                                "[3] Class::Function (source:12) failure"));
}

TEST_F(LogTest, WritesLongMessagesWholeFromManyThreads)
{
    std::vector<std::thread> threads;
    for (const std::size_t length : {511U, 512U, 513U, 20000U}) {
        threads.emplace_back([this, length] {
            for (int n = 0; n < 50; ++n) {
                Say(3, std::string(length, 'l'));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::map<std::string, int> counts;
    for (const std::string& line : Written()) {
        ++counts[line.substr(line.find(") ") + 2)];
    }
    EXPECT_THAT(counts, testing::ElementsAre(
                            testing::Pair(std::string(511, 'l'), 50), testing::Pair(std::string(512, 'l'), 50),
                            testing::Pair(std::string(513, 'l'), 50), testing::Pair(std::string(20000, 'l'), 50)));
}

} // namespace
