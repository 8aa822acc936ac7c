#include "tools/acfilter/io/LogReopening.h"

#include "platform/logging/Tmr_LogFile.h"

#include <signal.h>

#include <thread>

namespace secm::acfilter {
namespace {

// Runs in a thread: a signal handler could interrupt the writing of a line.
void ReopenOnEach(sigset_t hangUp)
{
    for (int received = 0; sigwait(&hangUp, &received) == 0;) {
        TmrGLog.Reopen();
    }
}

} // namespace

void ReopenLogOnHangUp()
{
    bool (Tmr_LogFile::*reopen)() = &Tmr_LogFile::Reopen; // null: the log is a host's own, without it
    if (reopen == nullptr) {
        return;
    }
    sigset_t hangUp;
    sigemptyset(&hangUp);
    sigaddset(&hangUp, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &hangUp, nullptr); // later threads inherit this
    std::thread(ReopenOnEach, hangUp).detach();
}

} // namespace secm::acfilter
