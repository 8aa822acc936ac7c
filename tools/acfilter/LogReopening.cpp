#include "tools/acfilter/LogReopening.h"

#include "platform/logging/Tmr_LogFile.h"

#include <signal.h>

#include <cstdlib>
#include <thread>

namespace {

// A handler could not do it: the signal may come while a line is written.
void ReopenOnEach(sigset_t hangUp)
{
    for (int received = 0; sigwait(&hangUp, &received) == 0;) {
        TmrGLog.Reopen();
    }
}

} // namespace

void ReopenLogOnHangUp()
{
    static bool isStarted = false;
    bool (Tmr_LogFile::*reopen)() = &Tmr_LogFile::Reopen; // null when a host's own log lacks it
    const char* path = std::getenv("TMR_LOG_FILE");
    if (isStarted || path == nullptr || *path == '\0' || reopen == nullptr) {
        return;
    }
    isStarted = true;
    sigset_t hangUp;
    sigemptyset(&hangUp);
    sigaddset(&hangUp, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &hangUp, nullptr); // also of the threads that follow, so that only ours takes it
    std::thread(ReopenOnEach, hangUp).detach();
}
