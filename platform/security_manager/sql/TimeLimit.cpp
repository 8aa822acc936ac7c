#include "platform/security_manager/sql/TimeLimit.h"

#include "platform/security_manager/sql/DatabaseAccess.h"

#include <soci/postgresql/soci-postgresql.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>

namespace {

constexpr int noDescriptor = -1;

// A descriptor of our own for the session's socket: the client library may close its own at any time, and the number
// could soon be that of another file of the host.
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

// Blocks all signals of this thread while it lives. A thread started meanwhile inherits that, so it takes none of the
// host's signals: a host that blocks a signal and waits for it would be ended if another thread did not block it.
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
        PQfinish(connection); // says goodbye, and waits for nothing
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
            throw std::runtime_error("no answer within " + std::to_string(limit.count()) +
                                     " s; the connection was cut");
        }
        throw;
    }
}

// Wakes the thread only when it has no deadline to sleep for, which is seldom while requests come in.
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
            shutdown(descriptor, SHUT_RDWR); // whoever waits for an answer now reads the end of it
        }
    }
}
