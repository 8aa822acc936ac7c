// The results of rule tests, for people, for programs and for build servers.
#pragma once

#include "analysis/suite/Coverage.h"
#include "analysis/suite/SuiteRun.h"
#include "tools/acfilter/render/TextOutput.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace secm::acfilter {

/// What the tests of one repository reached.
struct CoverageResult {
    std::string configuration;
    std::string repository;
    const analysis::Coverage* coverage;
};

struct TestSummary {
    std::size_t passed = 0;
    std::size_t failed = 0;
    std::size_t notRun = 0;               ///< Behind a failure, with --fail-fast.
    std::vector<CoverageResult> coverage; ///< Empty: it was not asked for.
    std::optional<unsigned> leastCoverage;
};

/// Each operation throws std::runtime_error when it cannot write.
class TestWriter {
public:
    virtual ~TestWriter() = default;
    virtual void Add(const analysis::Suite& suite, const analysis::TestResult& result) = 0;
    virtual void Finish(const TestSummary& summary) = 0;
};

/// The output must outlive the writer. `optionsOfRun` is the command line but for suites and tests, for the line that
/// runs a failed test again.
std::unique_ptr<TestWriter> MakeTextResults(std::string optionsOfRun, TextOutput& output);
std::unique_ptr<TestWriter> MakeJsonResults(TextOutput& output);
std::unique_ptr<TestWriter> MakeJunitResults(TextOutput& output);

/// Between apostrophes, as a shell reads it, unless it needs none.
std::string ShellWord(const std::string& text);

/// What failed, in words: "values of 'department'", "sees '17'", "count".
std::string SubjectOf(const analysis::Failure& failure);

} // namespace secm::acfilter
