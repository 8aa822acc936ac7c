#include "platform/logging/Tmr_LogFile.h"
#include "tests/Cases.h"
#include "tests/integration/Workspace.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <thread>

namespace {

using LogTest = WorkspaceTest;

TEST_F(LogTest, WritesMessagesOfAnyLengthWholeFromManyThreads)
{
    setenv("TMR_LOG_FILE", Path("a.log").c_str(), 1);
    Write("a.log", "before\n");
    Tmr_LogFile log;
    std::vector<std::thread> threads;
    for (const std::size_t length : {0U, 511U, 512U, 20000U}) {
        threads.emplace_back([&log, length] {
            for (int n = 0; n < 50; ++n) {
                EXPECT_EQ(log.StoreParams("source", "Function", 1, 4, 197, 1), 0);
                EXPECT_NE(log.StoreParams("C:\\source", "Func\ntion", static_cast<int>(length) + 1, 3, 197, 1), 0);
                log.Log("%s\n\n", std::string(length, 'l').c_str());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::map<std::string, int> counts;
    for (const std::string& line : Split(Read(Path("a.log")), "\n")) {
        ++counts[line.substr(std::min<std::size_t>(line.size(), std::string("2026-11-22T19:34:58.123Z ").size()))];
    }
    EXPECT_EQ(counts.size(), 5U);
    for (const std::size_t length : {0U, 511U, 512U, 20000U}) {
        EXPECT_EQ(counts["[3] Func\\x0ation (C:\\\\source:" + std::to_string(length + 1) + ") " +
                         std::string(length, 'l') + "\\x0a"],
                  50)
            << length;
    }
}

} // namespace
