// Test results in the XML that build servers read. A suite's counts stand before its tests, so the tests wait.
#include "tools/acfilter/render/TestWriter.h"

#include "tools/acfilter/render/Printable.h"

#include <fmt/format.h>

#include <string_view>

namespace secm::acfilter {

namespace {

// Controls are shown, and what XML does not allow becomes U+FFFD.
std::string XmlText(const std::string& text)
{
    constexpr const char* replacement = "\xEF\xBF\xBD";
    const std::string printable = Printable(text);
    std::string escaped;
    for (std::string_view rest = printable; !rest.empty();) {
        const FirstCharacter first = FirstCharacterOf(rest);
        const std::string_view bytes = rest.substr(0, first.length);
        const bool isBroken = first.length == 1 && static_cast<unsigned char>(bytes.front()) >= 0x80;
        const bool isNoCharacter = first.code == 0xFFFE || first.code == 0xFFFF;
        escaped += bytes == "&"                ? "&amp;"
                   : bytes == "<"              ? "&lt;"
                   : bytes == ">"              ? "&gt;"
                   : bytes == "\""             ? "&quot;"
                   : isBroken || isNoCharacter ? replacement
                                               : std::string(bytes);
        rest.remove_prefix(first.length);
    }
    return escaped;
}

class JunitResults final : public TestWriter {
public:
    explicit JunitResults(TextOutput& textOutput) : output(textOutput) {}

    void Add(const analysis::Suite& suite, const analysis::TestResult& result) override
    {
        if (suites.empty() || suites.back().name != suite.file) {
            suites.push_back({suite.file, 0, 0, 0, output.MakeWaitingLines()});
        }
        SuiteResults& results = suites.back();
        ++results.tests;
        results.failures += result.failures.empty() ? 0U : 1U;
        results.seconds += result.seconds;
        std::string text = fmt::format("    <testcase name=\"{}\" classname=\"{}\" time=\"{:.6f}\"",
                                       XmlText(result.test->name), XmlText(suite.file), result.seconds);
        text += result.failures.empty() ? "/>\n" : ">\n";
        for (const analysis::Failure& failure : result.failures) {
            text += fmt::format(
                "      <failure type=\"{}\" message=\"user '{}': {}: expected {}; found {}\">{}</failure>\n",
                XmlText(failure.what), XmlText(failure.user), XmlText(SubjectOf(failure)), XmlText(failure.expected),
                XmlText(failure.found), XmlText(failure.because));
        }
        text += result.failures.empty() ? "" : "    </testcase>\n";
        results.lines->Write(text);
    }

    void Finish(const TestSummary& summary) override
    {
        output.Write(
            fmt::format("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites tests=\"{}\" failures=\"{}\">\n",
                        summary.passed + summary.failed, summary.failed));
        for (const SuiteResults& suite : suites) {
            output.Write(fmt::format("  <testsuite name=\"{}\" tests=\"{}\" failures=\"{}\" time=\"{:.6f}\">\n",
                                     XmlText(suite.name), suite.tests, suite.failures, suite.seconds));
            suite.lines->ForEachLine([&](std::string_view line) { output.Write(fmt::format("{}\n", line)); });
            output.Write("  </testsuite>\n");
        }
        output.Write("</testsuites>\n");
    }

private:
    struct SuiteResults {
        std::string name;
        std::size_t tests;
        std::size_t failures;
        double seconds;
        std::unique_ptr<WaitingLines> lines;
    };

    TextOutput& output;
    std::vector<SuiteResults> suites;
};

} // namespace

std::unique_ptr<TestWriter> MakeJunitResults(TextOutput& output)
{
    return std::make_unique<JunitResults>(output);
}

} // namespace secm::acfilter
