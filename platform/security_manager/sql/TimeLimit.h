// Keeps a time limit where the server cannot: one that has stopped ends no statement, and its machine goes on
// acknowledging what arrives.
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

/// Watches one session, and must go before it. On PostgreSQL with a limit it has a thread, which sleeps as long as all
/// is well and takes no signals; otherwise it only ends the connection. One thread at a time may use it; it does not
/// survive a fork.
class TimeLimit {
public:
    /// `seconds` for each call of Keep; 0: no limit. Throws std::system_error when there is no thread or descriptor.
    TimeLimit(soci::session& watched, unsigned seconds);
    TimeLimit(const TimeLimit&) = delete;
    TimeLimit& operator=(const TimeLimit&) = delete;

    /// Ends the connection: statements that go after it no longer take leave of a server that may have stopped.
    ~TimeLimit();

    /// Runs `statements` of the session. One second after the limit, before which a server that works has ended them
    /// itself, the connection is cut and is of no more use. Throws what `statements` throws, or std::runtime_error when
    /// that was because the time was over.
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
    bool isAsleep = false;                     // until there is a deadline
    bool isEnding = false;
    bool hasCut = false;
    std::thread thread;
};
