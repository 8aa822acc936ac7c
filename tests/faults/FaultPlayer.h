#pragma once

#include "tests/faults/Requests.h"

#include <filesystem>
#include <string>

struct Fault {
    /// "memory": an allocation fails. "closed", "reset", "stalled": how the server's replies end. Otherwise what strace
    /// injects, such as "read:error=EIO".
    std::string kind;
    unsigned long number; ///< The call, counted from 1; of replies, how many bytes come before their end.
    bool isLasting;       ///< All after it fail too.
};

struct Outcome {
    int status; ///< As of waitpid; the exit status is a Result.
    std::string said;
    bool wasInjected;
    unsigned long count; ///< Calls of malloc, or bytes of replies, that there were.
};

/// Ends a process that crashes or hangs, after it has said where.
void WatchForCrashes();

/// Makes requests in processes of their own, each with one fault. Throws std::runtime_error when that cannot be done.
class FaultPlayer {
public:
    FaultPlayer(std::string connectionText, std::string roadName);

    Outcome Play(const Fault& fault);

private:
    Result Request(const std::string& text, const Fault& fault);
    [[noreturn]] void Trace(const std::string& text, const Fault& fault, int trace);

    const std::string program = std::filesystem::read_symlink("/proc/self/exe");
    const std::string connection;
    const std::string road;
    unsigned long* mallocCalls; // shared with the processes
};
