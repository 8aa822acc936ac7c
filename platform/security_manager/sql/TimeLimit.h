// A time limit on the side of the client: a server that hangs ends no statement, while its machine goes on
// acknowledging packets.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace soci {
class session;
}

namespace secm::platform {

/// Watches one session, and must be destroyed before it. On PostgreSQL with a limit it has a thread, which sleeps while
/// statements end in time and blocks all signals; otherwise it only closes the connection. One thread at a time may use
/// it. It cannot be used after a fork.
class TimeLimit {
public:
    /// `seconds` for each call of Keep; 0: no limit. Throws std::system_error when there is no thread or descriptor.
    TimeLimit(soci::session& watched, unsigned seconds);
    TimeLimit(const TimeLimit&) = delete;
    TimeLimit& operator=(const TimeLimit&) = delete;

    /// Closes the connection. Statements that are destroyed later then send no message to a server that may hang.
    ~TimeLimit();

    /// Runs `statements` of the session. A server that works ends them itself at the limit. One second later the
    /// connection is cut and cannot be used again. Throws what `statements` throws, or std::runtime_error when that was
    /// because the connection was cut.
    void Keep(const std::function<void()>& statements);

private:
    using Clock = std::chrono::steady_clock;

    void SetDeadline(std::optional<Clock::time_point> newDeadline);
    void Watch();

    soci::session& session;
    const std::chrono::seconds limit;
    const int descriptor; // of the connection's socket, or -1
    std::mutex mutex;
    std::condition_variable changed;
    std::optional<Clock::time_point> deadline; // while statements run
    bool isAsleep = false;                     // waiting for a deadline
    bool isEnding = false;
    bool hasCut = false;
    std::thread thread;
};

} // namespace secm::platform
