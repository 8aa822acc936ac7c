// `acfilter test`: runs suites of rule tests, or writes one from what is true today.
#pragma once

#include "tools/acfilter/commands/CommonOptions.h"
#include "tools/acfilter/commands/ExitStatus.h"

#include <optional>
#include <string>
#include <vector>

namespace secm::acfilter {

struct TestOptions {
    std::vector<std::string> files; ///< The suites.
    HostOptions host; ///< With `init`, all of it; else the configuration takes the place of the suites' own.
    Format format = Format::text;  ///< Or json or junit.
    std::vector<std::string> only; ///< The names of the tests to run; empty: all.
    bool failFast = false;
    bool showCoverage = false;
    std::optional<unsigned> leastCoverage; ///< In percent.
    bool allowCommand = false;             ///< A suite may start the program that it names.

    bool init = false;
    DataOptions data;                     ///< For `init`, without a record.
    std::optional<std::string> usersFrom; ///< For `init`; else every user of the security database.
};

/// Gives rulesAreWrong when a test failed or the coverage is too low. Throws UsageError, and std::exception when it
/// fails.
ExitStatus RunTest(const TestOptions& options);

/// Writes a suite.
ExitStatus RunTestInit(const TestOptions& options);

} // namespace secm::acfilter
