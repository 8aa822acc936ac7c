// Log rotation during a long run.
#pragma once

namespace secm::acfilter {

/// From now on, each SIGHUP opens the log file again and the run goes on, also when the signal comes from a closed
/// terminal. When the log has no Reopen, SIGHUP keeps its effect. Call it once, before other threads are started, so
/// that they block the signal too. Throws std::system_error when the thread that waits for the signal cannot be
/// started.
void ReopenLogOnHangUp();

} // namespace secm::acfilter
