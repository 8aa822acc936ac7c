#include "platform/security_manager/sql/TimeLimit.h"

#include "platform/security_manager/sql/DatabaseAccess.h"

#include <fmt/format.h>
#include <soci/postgresql/soci-postgresql.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>

namespace secm::platform {
namespace {

constexpr int noDescriptor = -1;

// Duplicates the descriptor of the session's socket: the client library may close its own at any time, and the host
// could then open another file under that number.
int DescriptorOf(soci::session& session)
{
    const soci::postgresql_session_backend* postgreSql = PostgreSqlOf(session);
    if (postgreSql == nullptr) {
        return noDescriptor;
    }
    const int descriptor = fcntl(PQsocket(postgreSql->conn_), F_DUPFD_CLOEXEC, 0);
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "watching the connection");
    }
    return descriptor;
}

// Blocks all signals of this thread while it lives. A thread that is started meanwhile inherits that, so it receives
// none of the host's signals. A host may block a signal and wait for it; a thread that does not block the signal would
// then end the process.
class AllSignalsBlocked {
public:
    AllSignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
    }
    ~AllSignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
    AllSignalsBlocked(const AllSignalsBlocked&) = delete;
    AllSignalsBlocked& operator=(const AllSignalsBlocked&) = delete;

private:
    sigset_t before{};
};

} // namespace

TimeLimit::TimeLimit(soci::session& watched, unsigned seconds)
    : session(watched), limit(seconds), descriptor(DescriptorOf(watched))
{
    if (descriptor == noDescriptor || seconds == 0) {
        return;
    }
    try {
        const AllSignalsBlocked inherited;
        thread = std::thread([this] { Watch(); });
    } catch (...) {
        close(descriptor);
        throw;
    }
}

TimeLimit::~TimeLimit()
{
    if (thread.joinable()) {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            isEnding = true;
        }
        changed.notify_one();
        thread.join();
    }
    if (descriptor != noDescriptor) {
        PGconn*& connection = PostgreSqlOf(session)->conn_;
        PQfinish(connection); // sends a last message and does not wait for the server
        connection = nullptr;
        close(descriptor);
    }
}

void TimeLimit::Keep(const std::function<void()>& statements)
{
    if (!thread.joinable()) {
        statements();
        return;
    }
    SetDeadline(Clock::now() + limit + std::chrono::seconds(1));
    try {
        statements();
        SetDeadline(std::nullopt);
    } catch (...) {
        SetDeadline(std::nullopt);
        if (hasCut) {
            throw std::runtime_error(fmt::format("no answer within {} s; the connection was cut", limit.count()));
        }
        throw;
    }
}

// Wakes the thread only when it waits without a deadline, which is rare while requests come in.
void TimeLimit::SetDeadline(std::optional<Clock::time_point> newDeadline)
{
    const std::lock_guard<std::mutex> lock(mutex);
    deadline = newDeadline;
    if (deadline && isAsleep) {
        isAsleep = false;
        changed.notify_one();
    }
}

void TimeLimit::Watch()
{
    std::unique_lock<std::mutex> lock(mutex);
    while (!isEnding) {
        if (!deadline) {
            isAsleep = true;
            changed.wait(lock, [this] { return !isAsleep || isEnding; });
        } else if (const Clock::time_point until = *deadline; Clock::now() < until) {
            changed.wait_until(lock, until, [this] { return isEnding; });
        } else {
            hasCut = true;
            deadline.reset();
            shutdown(descriptor, SHUT_RDWR); // a thread that waits for an answer then reads the end of the stream
        }
    }
}

} // namespace secm::platform
