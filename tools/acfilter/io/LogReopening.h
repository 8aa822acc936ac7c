// Log rotation during a long run.
#pragma once

namespace secm::acfilter {

/// With a log file (`TMR_LOG_FILE`), each SIGHUP from now on opens the log file again and the run goes on, also when
/// the signal comes from a closed terminal. Without a log file, or when the log has no Reopen, SIGHUP keeps its effect.
/// Call it before other threads are started, so that they block the signal too. Throws std::system_error when the
/// thread that waits for the signal cannot be started.
void ReopenLogOnHangUp();

} // namespace secm::acfilter
