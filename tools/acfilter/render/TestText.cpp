// Test results for people: nothing of a test that passed, and of a failed one what to compare.
#include "tools/acfilter/render/TestWriter.h"

#include "tools/acfilter/render/Printable.h"
#include "tools/acfilter/render/TextLayout.h"

#include <fmt/format.h>

#include <algorithm>

namespace secm::acfilter {

namespace {

class TextResults final : public TestWriter {
public:
    TextResults(std::string optionsOfRun, TextOutput& textOutput) : options(std::move(optionsOfRun)), output(textOutput)
    {
    }

    void Add(const analysis::Suite& suite, const analysis::TestResult& result) override
    {
        if (result.failures.empty()) {
            return;
        }
        std::string text = fmt::format("{}:{}:{}: failed: {}\n", Printable(suite.file), result.test->place.line,
                                       result.test->place.column, Printable(result.test->name));
        const std::string* user = nullptr;
        for (const analysis::Failure& failure : result.failures) {
            if (user == nullptr || *user != failure.user) {
                text += LabelledLine(1, "user", Quoted(failure.user));
            }
            user = &failure.user;
            text += fmt::format("   {}\n", Printable(SubjectOf(failure)));
            text += LabelledLine(5, "expected", Printable(failure.expected)) +
                    LabelledLine(5, "found", Printable(failure.found));
            text += failure.because.empty() ? "" : LabelledLine(5, "because", Printable(failure.because));
        }
        output.Write(text + fmt::format(" again: acfilter test {}{} --only {}\n\n", options,
                                        Printable(ShellWord(suite.file)), Printable(ShellWord(result.test->name))));
    }

    void Finish(const TestSummary& summary) override
    {
        std::string text =
            fmt::format("{} {} passed, {} failed{}\n", summary.passed, Tests(summary.passed), summary.failed,
                        summary.notRun == 0 ? "" : fmt::format(", {} not run", summary.notRun));
        for (const CoverageResult& result : summary.coverage) {
            text += fmt::format("coverage of the repository {} of {}: {} % ({} of {})\n", Quoted(result.repository),
                                Printable(result.configuration), result.coverage->Percent(), result.coverage->Reached(),
                                result.coverage->All());
            for (const std::string& item : result.coverage->Missing()) {
                text += fmt::format("   no test reaches: {}\n", Printable(item));
            }
            if (summary.leastCoverage && result.coverage->Percent() < *summary.leastCoverage) {
                text +=
                    fmt::format("   this is less than the {} % that --min-coverage asks for\n", *summary.leastCoverage);
            }
        }
        output.Write(text);
    }

private:
    static const char* Tests(std::size_t count) { return count == 1 ? "test" : "tests"; }

    const std::string options;
    TextOutput& output;
};

} // namespace

std::unique_ptr<TestWriter> MakeTextResults(std::string optionsOfRun, TextOutput& output)
{
    return std::make_unique<TextResults>(std::move(optionsOfRun), output);
}

std::string ShellWord(const std::string& text)
{
    constexpr const char* harmless = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-./:=,";
    if (!text.empty() && text.find_first_not_of(harmless) == std::string::npos) {
        return text;
    }
    std::string word = "'";
    for (const char character : text) {
        word += character == '\'' ? "'\\''" : std::string(1, character);
    }
    return word + "'";
}

std::string SubjectOf(const analysis::Failure& failure)
{
    if (failure.name.empty() && failure.what != "values") {
        return failure.what;
    }
    return fmt::format("{} {}", failure.what == "values" ? "values of" : failure.what, Quoted(failure.name));
}

} // namespace secm::acfilter
