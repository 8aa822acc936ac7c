#include "platform/logging/Tmr_LogFile.h"
#include "tests/Cases.h"
#include "tests/integration/Workspace.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <map>
#include <optional>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace {

using namespace secm::testing;

using LogTest = WorkspaceTest;

TEST_F(LogTest, WritesMessagesOfAnyLengthWholeFromManyThreadsWhileItIsRotated)
{
    setenv("TMR_LOG_FILE", Path("a.log").c_str(), 1);
    Write("a.log", "before\n");
    Tmr_LogFile log;
    std::map<std::size_t, pid_t> numbers = {{0, 0}, {511, 0}, {512, 0}, {20000, 0}}; // of the threads
    std::vector<std::thread> threads;
    for (auto& [ofThread, number] : numbers) {
        threads.emplace_back([&log, length = ofThread, &number = number] {
            number = gettid();
            for (int n = 0; n < 50; ++n) {
                EXPECT_EQ(log.StoreParams("source", "Function", 1, 4, 197, 1), 0);
                EXPECT_NE(log.StoreParams("C:\\source", "Func\ntion", static_cast<int>(length) + 1, 3, 197, 1), 0);
                log.Log("%s\n\n", std::string(length, 'l').c_str());
            }
        });
    }
    std::string written;
    const auto rotate = [&] {
        std::filesystem::rename(Path("a.log"), Path("old.log"));
        EXPECT_TRUE(log.Reopen());
        written += Read(Path("old.log"));
    };
    for (int times = 0; times < 20 && std::filesystem::exists(Path("a.log")); ++times) {
        rotate();
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    written += Read(Path("a.log"));
    std::map<std::string, int> counts;
    for (const std::string& line : Split(written, "\n")) {
        ++counts[line.substr(std::min<std::size_t>(line.size(), std::string("2026-11-22T19:34:58.123Z ").size()))];
    }
    EXPECT_EQ(counts.size(), 5U);
    for (const auto& [length, number] : numbers) {
        EXPECT_EQ(counts["[3] [" + std::to_string(number) + "] Func\\x0ation (C:\\\\source:" +
                         std::to_string(length + 1) + ") " + std::string(length, 'l') + "\\x0a"],
                  50)
            << length;
    }
}

TEST_F(LogTest, GoesOnWithTheOldFileWhereItCannotBeOpenedAgain)
{
    setenv("TMR_LOG_FILE", Path("a.log").c_str(), 1);
    Tmr_LogFile log;
    ASSERT_NE(log.StoreParams("source", "Function", 1, 3, 197, 1), 0);
    log.Log("first");
    std::filesystem::rename(Path("a.log"), Path("old.log"));
    std::filesystem::create_directory(Path("a.log"));
    EXPECT_FALSE(log.Reopen());
    log.Log("second");
    EXPECT_THAT(Read(Path("old.log")), testing::MatchesRegex(".* first\n.* second\n"));
}

// Logs the same line three times. A limit of the file size cuts the second one off in the middle.
std::string WrittenOverALimit(const std::string& path)
{
    setenv("TMR_LOG_FILE", path.c_str(), 1);
    std::signal(SIGXFSZ, SIG_IGN);
    Tmr_LogFile log;
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const std::string part = "2026-11-22T19:34:58.123Z [3] [" + std::to_string(gettid()) + "] Function (s";
    const rlim_t inTheMiddle = 2 * part.size() + std::string("ource:1) 0123456789\n").size();
    for (const rlim_t largest : {limit.rlim_max, inTheMiddle, limit.rlim_max}) {
        limit.rlim_cur = largest;
        setrlimit(RLIMIT_FSIZE, &limit);
        EXPECT_NE(log.StoreParams("source", "Function", 1, 3, 197, 1), 0);
        log.Log("0123456789");
    }
    std::ostringstream written;
    written << std::ifstream(path).rdbuf();
    return std::regex_replace(written.str(), std::regex("20[^Z]*Z (\\[3\\]) \\[[0-9]+\\]"), "time $1");
}

TEST_F(LogTest, TakesBackALineThatFitsOnlyInPart)
{
    const std::string line = "time [3] Function (source:1) 0123456789\n";
    EXPECT_EQ(WrittenOverALimit(Path("a.log")), line + line);
    // The part stays in a file that cannot be made shorter. The next line must not be joined to it.
    const int file = memfd_create("log", MFD_ALLOW_SEALING);
    fcntl(file, F_ADD_SEALS, F_SEAL_SHRINK);
    EXPECT_EQ(WrittenOverALimit("/proc/self/fd/" + std::to_string(file)), line + "time [3] Function (s\n" + line);
    close(file);
}

TEST_F(LogTest, TheProgramsSettingsTakePrecedenceOverTheEnvironment)
{
    setenv("TMR_LOG_LEVEL", "7", 1);
    setenv("TMR_LOG_FILE", Path("environment.log").c_str(), 1);
    Tmr_LogFile both, levelOnly;
    both.Configure(9, Path("replaced.log"));
    both.Configure(4, Path("a.log"));
    levelOnly.Configure(5, std::nullopt);
    for (Tmr_LogFile* log : {&both, &levelOnly}) {
        for (const int level : {4, 5, 6}) {
            if (log->StoreParams("source", "Function", 1, level, 197, 1) != 0) {
                log->Log("text");
            }
        }
        EXPECT_THROW(log->Configure(7, ""), std::logic_error);
    }
    EXPECT_THAT(Read(Path("a.log")), testing::MatchesRegex("[^\n]* \\[4\\] [^\n]*\n"));
    EXPECT_THAT(Read(Path("environment.log")), testing::MatchesRegex("[^\n]* \\[4\\] [^\n]*\n[^\n]* \\[5\\] [^\n]*\n"));
    EXPECT_FALSE(std::filesystem::exists(Path("replaced.log")));
}

} // namespace
