// Runs the tests of a suite. Every answer is the module's own, on both roads of hosts.
#pragma once

#include "analysis/Export.h"
#include "analysis/suite/Suite.h"

#include <string>
#include <vector>

namespace secm::analysis {

class DataSource;
class Tracer;

/// An assertion that does not hold for a user.
struct Failure {
    std::string user;
    std::string what; ///< "outcome", "filter", "count", "rows", "roads", "user", "values", "sees" or "hides".
    std::string name; ///< The field of "values", the key of "sees" and "hides"; else empty.
    std::string expected;
    std::string found;
    std::string because; ///< Clauses that explain what was found; may be empty.
};

struct TestResult {
    const SuiteTest* test = nullptr; ///< Of the suite.
    std::vector<Failure> failures;   ///< Empty: the test passed.
    std::vector<Trace> traces;       ///< How each user was answered at a log-in.
    double seconds = 0;
};

/// One object serves one thread. What it is given must outlive it.
class SuiteRun {
public:
    /// `tracer` is connected to the users of the suite. `data` is null when the suite has no rows. Throws SuiteError
    /// when a test names a field that the repository lacks.
    SECM_ANALYSIS_EXPORT SuiteRun(const Suite& suite, Tracer& tracer, DataSource* data);

    /// Throws what Tracer::Explain throws, and DataError.
    SECM_ANALYSIS_EXPORT TestResult Run(const SuiteTest& test);

private:
    class __attribute__((visibility("hidden"))) UserCheck;

    Tracer& asked;
    DataSource* rows;
};

/// The values that a field puts into the filter: as the values function gives them, and the attributes in their place.
SECM_ANALYSIS_EXPORT std::set<std::string> FilteredValues(const FieldTrace& field);

} // namespace secm::analysis
