// The logging library as the module sees it: one process-wide log, asked in two steps so that a
// message that nobody wants is never formatted.
#pragma once

#include "platform/Export.h"

#include <atomic>
#include <limits>
#include <mutex>

/// The process's log. Any thread may write at any time, also while the process exits; lines of different threads never
/// mix. The environment says what is written and where, read when the first message is offered:
/// `TMR_LOG_LEVEL` (default 3; messages of that level and below are written) and
/// `TMR_LOG_FILE` (appended to; unset or empty: standard error). The file is closed when the library is unloaded.
class PLATFORM_EXPORT Tmr_LogFile {
public:
    constexpr Tmr_LogFile() = default;
    Tmr_LogFile(const Tmr_LogFile&) = delete;
    Tmr_LogFile& operator=(const Tmr_LogFile&) = delete;

    /// Announces the calling thread's next message: where it comes from and how much it matters (3: failure
    /// ... 7: trace). Answers non-zero when the message is to be written; only then call `Log`, on the same
    /// thread. The texts are kept by address until that `Log` and must live as long.
    int StoreParams(const char* sourceFile, const char* functionName, int line, int level, int module, int number);

    /// Writes the announced message, whole whatever its length, as one line whatever bytes are in it.
    /// Throws std::bad_alloc. A line that cannot be written whole is left out; standard error says so, the caller is
    /// not told.
    void Log(const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// Opens the log file again after it was renamed or removed; the path is that of `TMR_LOG_FILE` at the first
    /// message. Each message is whole in the old file or in the new one. Any thread may call it, a signal handler must
    /// not. False when the file cannot be opened: standard error says so, and messages go to where they went before.
    /// True when there is nothing to open again: before the first message, or without a log file.
    /// A weak symbol, because a host's own log may lack it.
    __attribute__((weak)) bool Reopen();

private:
    struct Writer;
    void Open();

    // Above every level until the environment has been read, so that a level is tested by one comparison.
    std::atomic<int> threshold{std::numeric_limits<int>::max()};
    std::mutex opening;
    // Null until the log is open. Not owned, so that the log has no destructor: threads use it until the process ends.
    std::atomic<Writer*> writer{nullptr};
};

extern PLATFORM_EXPORT Tmr_LogFile TmrGLog;
