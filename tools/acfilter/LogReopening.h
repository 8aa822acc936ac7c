// Rotating the log of a run that takes long.
#pragma once

/// With a log file (`TMR_LOG_FILE`), SIGHUP from now on opens it again, and the run goes on, also when it is the
/// terminal that has gone. Without one, or with a log that cannot do it, SIGHUP keeps its meaning. Call it before there
/// are other threads. Throws std::system_error when there is no thread to wait for the signal.
void ReopenLogOnHangUp();
