#pragma once

#include <string>

struct Fault {
    /// "memory": an allocation fails. "closed", "reset", "stalled": how the server's replies end. Anything else is what
    /// strace injects, such as "read:error=EIO".
    std::string kind;
    unsigned long number; ///< Of the call, from 1; for replies, how many bytes are passed on.
    bool isLasting;       ///< All later calls or connections fail too.
};

struct Outcome {
    int status;       ///< Of waitpid(); the exit status is a Result of Requests.h.
    std::string said; ///< On standard error.
    bool wasInjected;
    unsigned long count; ///< Calls of malloc, or reply bytes.
};

/// Makes this process print its stack on standard error when it crashes or hangs, before it ends.
void WatchForCrashes();

/// Makes the requests in a new process with one fault. Throws std::runtime_error when that cannot be done.
Outcome PlayFault(const std::string& connection, const std::string& road, const Fault& fault);
