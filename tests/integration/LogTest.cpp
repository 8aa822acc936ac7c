#include "platform/logging/Tmr_LogFile.h"
#include "tests/integration/Workspace.h"

#include <regex>
#include <thread>
#include <vector>

namespace {

class LogTest : public WorkspaceTest {
protected:
    explicit LogTest(const char* level = "6")
    {
        setenv("TMR_LOG_LEVEL", level, 1);
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

    /// The lines' messages, after checking what stands before them.
    std::vector<std::string> Messages() const
    {
        std::istringstream lines(Read(folder / "a.log"));
        std::vector<std::string> messages;
        std::string line;
        std::getline(lines, line);
        EXPECT_EQ(line, "before");
        while (std::getline(lines, line)) {
            std::smatch parts;
            const std::regex form(
                R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z \[[36]\] Class::Function \(source:12\) (.*))");
            EXPECT_TRUE(std::regex_match(line, parts, form)) << line;
            messages.push_back(parts[1]);
        }
        return messages;
    }

    Tmr_LogFile log;
};

TEST_F(LogTest, WritesWantedMessagesEachInOneLine)
{
    Say(7, "not wanted");
    Say(6, "plain\n");
    Say(3, "two ends\n\n");
    Say(6, "a\\x0a\tb\x7f\x1b[31m\xC3\xA9");
    Say(6, "");
    EXPECT_THAT(Messages(),
                testing::ElementsAre("plain", "two ends\\x0a", "a\\\\x0a\\x09b\\x7f\\x1b[31m\xC3\xA9", ""));
}

TEST_F(LogTest, WritesLongMessagesWholeFromManyThreads)
{
    for (const std::size_t length : {511U, 512U, 513U}) {
        Say(6, std::string(length, 'l'));
    }
    std::vector<std::thread> threads;
    for (const char letter : {'a', 'b', 'c', 'd'}) {
        threads.emplace_back([this, letter] {
            for (int n = 0; n < 50; ++n) {
                Say(6, std::string(10000, letter));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const std::vector<std::string> messages = Messages();
    ASSERT_EQ(messages.size(), 203U);
    EXPECT_EQ(messages[0].size() + messages[1].size() + messages[2].size(), 511U + 512U + 513U);
    for (std::size_t n = 3; n < messages.size(); ++n) {
        EXPECT_EQ(messages[n], std::string(10000, messages[n].front()));
    }
}

class DefaultLogTest : public LogTest {
protected:
    DefaultLogTest() : LogTest("loud") {}
};

TEST_F(DefaultLogTest, AnUnusableLevelIsSaidAndMeansFailuresOnly)
{
    testing::internal::CaptureStderr();
    Say(4, "no");
    Say(3, "yes");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "TMR_LOG_LEVEL: 'loud' is not a whole number; logging at level 3\n");
    EXPECT_THAT(Messages(), testing::ElementsAre("yes"));
}

} // namespace
