// Logs any bytes as a message with any origin: the log gets one line that can be read back, or nothing when the level
// is not logged.
#include "fuzz/Fuzzing.h"
#include "platform/logging/Tmr_LogFile.h"

#include <fuzzer/FuzzedDataProvider.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

using namespace secm::fuzzing;

namespace {

constexpr int wantedLevel = 7;

// The log's file, in memory.
int LogFile()
{
    static const int file = [] {
        const int opened = memfd_create("log", MFD_CLOEXEC);
        setenv("TMR_LOG_FILE", ("/proc/self/fd/" + std::to_string(opened)).c_str(), 1);
        setenv("TMR_LOG_LEVEL", std::to_string(wantedLevel).c_str(), 1);
        return opened;
    }();
    return file;
}

std::string TakeWritten()
{
    const off_t length = lseek(LogFile(), 0, SEEK_END);
    std::string written(static_cast<std::size_t>(length), '\0');
    if (pread(LogFile(), written.data(), written.size(), 0) != length || ftruncate(LogFile(), 0) != 0) {
        Fail("the log's file in memory cannot be read");
    }
    return written;
}

bool IsTime(const std::string& text)
{
    const std::string pattern = "0000-00-00T00:00:00.000Z ";
    return std::equal(pattern.begin(), pattern.end(), text.begin(), text.end(), [](char wanted, char found) {
        return wanted == '0' ? found >= '0' && found <= '9' : found == wanted;
    });
}

// Undoes the escapes. Fails at bytes that the log must never write.
std::string ReadBack(const std::string& line)
{
    const std::string digits = "0123456789abcdef";
    std::string bytes;
    for (std::size_t at = 0; at < line.size(); ++at) {
        const auto code = static_cast<unsigned char>(line[at]);
        if (code < 0x20 || code == 0x7f) {
            Fail("a control character stands in the log's line " + Shown(line));
        }
        if (line[at] != '\\') {
            bytes += line[at];
        } else if (line.substr(at, 2) == "\\\\") {
            bytes += '\\';
            at += 1;
        } else {
            const std::string escape = line.substr(at, 4);
            if (escape.size() != 4 || escape[1] != 'x' || digits.find(escape[2]) == std::string::npos ||
                digits.find(escape[3]) == std::string::npos) {
                Fail("a backslash begins nothing in the log's line " + Shown(line));
            }
            bytes += static_cast<char>(digits.find(escape[2]) * 16 + digits.find(escape[3]));
            at += 3;
        }
    }
    return bytes;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const int level = input.ConsumeIntegralInRange(-1, wantedLevel + 2);
    const int lineNumber = input.ConsumeIntegral<int>();
    const std::string function = input.ConsumeRandomLengthString().c_str();
    const std::string source = input.ConsumeRandomLengthString().c_str();
    const std::string rest = input.ConsumeRemainingBytesAsString();
    const std::string beforeNul = rest.c_str();

    LogFile();
    if (TmrGLog.StoreParams(source.c_str(), function.c_str(), lineNumber, level, 197, 1) == 0) {
        if (level <= wantedLevel || !TakeWritten().empty()) {
            Fail("a message of level " + std::to_string(level) + " was not wanted, or written all the same");
        }
        return 0;
    }
    std::string message = beforeNul;
    if (beforeNul.size() == rest.size()) {
        TmrGLog.Log("%s", beforeNul.c_str());
    } else {
        const std::string behindNul = rest.substr(beforeNul.size() + 1).c_str();
        TmrGLog.Log("%s%c%s", beforeNul.c_str(), 0, behindNul.c_str());
        message += '\0' + behindNul;
    }
    if (message.ends_with('\n')) {
        message.pop_back();
    }

    std::string line = TakeWritten();
    const std::string expected = "[" + std::to_string(level) + "] [" + std::to_string(gettid()) + "] " + function +
                                 " (" + source + ":" + std::to_string(lineNumber) + ") " + message;
    const std::string time = line.substr(0, 25);
    if (level > wantedLevel || !line.ends_with('\n') || !IsTime(time)) {
        Fail("the log holds " + Shown(line) + " for " + Shown(expected));
    }
    line.pop_back();
    if (ReadBack(line.substr(time.size())) != expected) {
        Fail("the log's line " + Shown(line) + " cannot be read back to " + Shown(expected));
    }
    return 0;
}
