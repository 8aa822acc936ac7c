// Test results for programs, one object a line: the tests, then a summary. The keys are documented and stay.
#include "tools/acfilter/render/TestWriter.h"

#include "tools/acfilter/render/Json.h"

namespace secm::acfilter {

namespace {

class JsonResults final : public TestWriter {
public:
    explicit JsonResults(TextOutput& textOutput) : output(textOutput) {}

    void Add(const analysis::Suite& suite, const analysis::TestResult& result) override
    {
        Json failures = Json::array();
        for (const analysis::Failure& failure : result.failures) {
            failures.push_back({{"user", failure.user},
                                {"what", failure.what},
                                {"name", TextOrNull(failure.name)},
                                {"expected", failure.expected},
                                {"found", failure.found},
                                {"because", TextOrNull(failure.because)}});
        }
        output.Write(JsonLine({{"suite", suite.file},
                               {"line", result.test->place.line},
                               {"test", result.test->name},
                               {"passed", result.failures.empty()},
                               {"failures", std::move(failures)}}));
    }

    void Finish(const TestSummary& summary) override
    {
        Json coverage = Json::array();
        for (const CoverageResult& result : summary.coverage) {
            coverage.push_back({{"configuration", result.configuration},
                                {"repository", result.repository},
                                {"percent", result.coverage->Percent()},
                                {"reached", result.coverage->Reached()},
                                {"of", result.coverage->All()},
                                {"missing", result.coverage->Missing()}});
        }
        output.Write(JsonLine({{"passed", summary.passed},
                               {"failed", summary.failed},
                               {"notRun", summary.notRun},
                               {"coverage", std::move(coverage)}}));
    }

private:
    TextOutput& output;
};

} // namespace

std::unique_ptr<TestWriter> MakeJsonResults(TextOutput& output)
{
    return std::make_unique<JsonResults>(output);
}

} // namespace secm::acfilter
