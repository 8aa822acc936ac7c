// The logging library: one log for the process. A message takes two calls, so that a message of an unwanted level is
// never formatted.
#pragma once

#include "platform/Export.h"

#include <atomic>
#include <limits>
#include <mutex>
#include <optional>
#include <string>

/// The process's log. Any thread may write at any time, also while the process exits; lines of different threads never
/// mix. The environment is read at the first call of StoreParams: `TMR_LOG_LEVEL` (default 3; messages of that level
/// and below are written) and `TMR_LOG_FILE` (appended to; unset or empty: standard error). The file is closed when the
/// library is unloaded.
class PLATFORM_EXPORT Tmr_LogFile {
public:
    constexpr Tmr_LogFile() = default;
    Tmr_LogFile(const Tmr_LogFile&) = delete;
    Tmr_LogFile& operator=(const Tmr_LogFile&) = delete;

    /// Announces the calling thread's next message: its origin and its level (3: failure ... 7: trace). Non-zero when
    /// the message is to be written; only then call `Log`, on the same thread. The texts are not copied: they must live
    /// until that `Log`.
    int StoreParams(const char* sourceFile, const char* functionName, int line, int level, int module, int number);

    /// Writes the announced message as one line, of any length and with any bytes, with the time in UTC and the
    /// system's number of the calling thread. Throws std::bad_alloc. A line that cannot be written whole is left out,
    /// which is reported on standard error and not to the caller.
    void Log(const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// Sets the level and the file before the first call of StoreParams. They mean what `TMR_LOG_LEVEL` and
    /// `TMR_LOG_FILE` mean and take precedence over them; without a value, the variable counts. Another call replaces
    /// both. Any thread may call. Throws std::logic_error, and changes nothing, after the first call of StoreParams;
    /// throws std::bad_alloc. A weak symbol, because a host's own log may lack it.
    __attribute__((weak)) void Configure(std::optional<int> level, const std::optional<std::string>& path);

    /// Opens the log file again, at the same path, after it was renamed or removed. Each message is whole in the old
    /// file or in the new one. Any thread may call it, a signal handler must not. False when the file cannot be opened:
    /// that is reported on standard error, and messages are written to where they were written before. True when there
    /// is nothing to open again: before the first message, or without a log file. A weak symbol, because a host's own
    /// log may lack it.
    __attribute__((weak)) bool Reopen();

private:
    struct Settings;
    struct Writer;
    void Open();

    // Above every level until the log is open, so that a level is tested by one comparison.
    std::atomic<int> threshold{std::numeric_limits<int>::max()};
    std::mutex opening;
    // Not owned, so that the log has no destructor: threads use it until the process ends.
    Settings* settings = nullptr;         // null without Configure; guarded by `opening`
    std::atomic<Writer*> writer{nullptr}; // null until the log is open
};

extern PLATFORM_EXPORT Tmr_LogFile TmrGLog;
