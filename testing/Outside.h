// The module's platform in memory, for unit tests and fuzzers: the security manager with its administration interface,
// the configuration and the log. A program links it instead of the platform layers.
#pragma once

#include "testing/InMemoryConfiguration.h"
#include "testing/InMemorySecurity.h"
#include "testing/OutsideCalls.h"

namespace secm::testing {

/// Whether an interface is there, and whether it initializes.
enum class Offer { connects, refuses, isMissing };

/// Which questions of one kind are answered with null or false.
struct Refusal {
    static constexpr unsigned every = ~0U;

    bool IsNext() { return ++asked == nth || nth == every; }

    unsigned nth = 0; ///< Counted from 1; 0: none.
    unsigned asked = 0;
};

struct Outside {
    Configuration configuration;
    Users users;
    Offer securityManager = Offer::connects;
    Offer administration = Offer::connects;
    Refusal userDetails;
    Refusal resources; ///< A refused question gets resources and false: the module must not use them.
    Refusal permissionLists;
    int logLevel = 7;
    OutsideCalls calls;
};

/// What the platform answers and records. For one thread.
extern Outside outside;

/// The security manager that the module is given.
InMemorySecurityManager& OutsideSecurityManager();

/// A log message as the record of calls has it: LEVEL FUNCTION: TEXT, a line end at its end written as "\n".
std::string RecordedMessage(int level, const std::string& function, std::string text);

} // namespace secm::testing
