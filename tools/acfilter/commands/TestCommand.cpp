// Suites run one after the other. Each has its own configuration in scope, so nothing is put in force.
#include "tools/acfilter/commands/TestCommand.h"

#include "analysis/data/DataSource.h"
#include "analysis/suite/SuiteDatabase.h"
#include "analysis/suite/SuiteRun.h"
#include "analysis/trace/Tracer.h"
#include "tools/acfilter/commands/Configuration.h"
#include "tools/acfilter/commands/Connection.h"
#include "tools/acfilter/commands/Errors.h"
#include "tools/acfilter/commands/FileOutput.h"
#include "tools/acfilter/commands/Log.h"
#include "tools/acfilter/io/OutputFile.h"
#include "tools/acfilter/io/Progress.h"
#include "tools/acfilter/render/TestWriter.h"

#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>

namespace secm::acfilter {

namespace {

// Makes the rows of a suite; null when it has none.
std::unique_ptr<analysis::DataSource> RowsOf(const analysis::Suite& suite, const TestOptions& options)
{
    if (!suite.data) {
        return nullptr;
    }
    const analysis::SuiteData& data = *suite.data;
    if (!data.command.empty() && !options.allowCommand) {
        throw analysis::SuiteError(data.place, fmt::format("the suite starts the program '{}'; when you trust it, add "
                                                           "--allow-command",
                                                           data.command));
    }
    try {
        if (data.statements.empty()) {
            const std::string connection = data.command.empty() ? data.connection : "command:" + data.command;
            return analysis::OpenData({connection, data.table, data.key, options.host.timeoutSeconds});
        }
        std::ifstream file(data.statements, std::ios::binary);
        const std::string statements{std::istreambuf_iterator<char>(file), {}};
        if (!file.is_open() || file.bad() || statements.empty()) {
            throw analysis::DataError(fmt::format("{}: cannot be read, or is empty", data.statements));
        }
        return analysis::OpenDataOfStatements(statements,
                                              {data.statements, data.table, data.key, options.host.timeoutSeconds});
    } catch (const analysis::DataError& error) {
        throw analysis::SuiteError(data.place, error.what());
    }
}

class TestRun {
public:
    TestRun(const TestOptions& testOptions, TestWriter& testWriter)
        : options(testOptions), writer(testWriter), only(options.only.begin(), options.only.end())
    {
    }

    void Run(const analysis::Suite& suite)
    {
        const CFG_CandidateScope scope(ReadConfiguration(suite.configuration, "configuration of the suite"));
        try {
            RequireRepository(suite.repository, suite.configuration);
        } catch (const std::runtime_error& error) {
            throw analysis::SuiteError(suite.repositoryPlace, error.what());
        }
        analysis::Tracer tracer(suite.repository);
        std::optional<analysis::SuiteDatabase> users;
        HostOptions host = options.host;
        host.securityDatabase = suite.security ? *suite.security : users.emplace(suite.users).ConnectionText();
        Connect(tracer, host, suite.file + ": security");
        const auto rows = RowsOf(suite, options);
        analysis::SuiteRun run(suite, tracer, rows.get());
        analysis::Coverage& coverage = CoverageOf(suite, tracer.Rules());
        for (const analysis::SuiteTest& test : suite.tests) {
            if (only.empty() || only.count(test.name) != 0) {
                Run(suite, test, run, coverage);
            }
        }
    }

    TestSummary Summary() const
    {
        TestSummary whole = summary;
        whole.leastCoverage = options.leastCoverage;
        if (options.showCoverage || options.leastCoverage) {
            for (const Covered& covered : coverages) {
                whole.coverage.push_back({covered.configuration, covered.repository, &covered.coverage});
            }
        }
        return whole;
    }

private:
    struct Covered {
        std::string configuration;
        std::string repository;
        analysis::Coverage coverage;
    };

    void Run(const analysis::Suite& suite, const analysis::SuiteTest& test, analysis::SuiteRun& run,
             analysis::Coverage& coverage)
    {
        if (options.failFast && summary.failed != 0) {
            ++summary.notRun;
            return;
        }
        try {
            const analysis::TestResult result = run.Run(test);
            for (const analysis::Trace& trace : result.traces) {
                coverage.Add(trace);
            }
            ++(result.failures.empty() ? summary.passed : summary.failed);
            writer.Add(suite, result);
        } catch (const std::runtime_error& error) {
            throw analysis::SuiteError(test.place, fmt::format("the test '{}': {}", test.name, error.what()));
        }
        progress.CountOne();
    }

    // Several suites may test one repository.
    analysis::Coverage& CoverageOf(const analysis::Suite& suite, const analysis::RepositoryRules& rules)
    {
        const auto found = std::find_if(coverages.begin(), coverages.end(), [&](const Covered& covered) {
            return covered.configuration == suite.configuration && covered.repository == suite.repository;
        });
        return found != coverages.end()
                   ? found->coverage
                   : coverages.emplace_back(Covered{suite.configuration, suite.repository, analysis::Coverage(rules)})
                         .coverage;
    }

    const TestOptions& options;
    TestWriter& writer;
    const std::set<std::string> only;
    std::deque<Covered> coverages; // which keeps its elements in place
    TestSummary summary;
    Progress progress{true, "tests"};
};

void RequireTestUse(const TestOptions& options)
{
    if (options.files.empty()) {
        throw UsageError("FILE is required: name a suite, or write one with --init");
    }
    const DataOptions& data = options.data;
    if (!options.host.securityDatabase.empty() || !options.host.repository.empty() || options.usersFrom ||
        !(data.connection + data.table + data.key).empty()) {
        throw UsageError("--security, --repository, --users-from, --data, --table and --key are for --init; otherwise "
                         "the suite says them");
    }
    if (options.leastCoverage.value_or(0) > 100) {
        throw UsageError("--min-coverage is a number of percent from 0 to 100");
    }
}

std::vector<analysis::Suite> ReadSuites(const TestOptions& options)
{
    std::vector<analysis::Suite> suites;
    for (const std::string& file : options.files) {
        suites.push_back(analysis::ReadSuite(file));
        if (!options.host.configuration.empty()) {
            suites.back().configuration = options.host.configuration;
        }
    }
    for (const std::string& wanted : options.only) {
        if (const std::string problem = analysis::WhyNoTest(suites, wanted); !problem.empty()) {
            throw UsageError("--only: " + problem);
        }
    }
    return suites;
}

// What a failed test needs to be run again, but for its suite and its name.
std::string OptionsOfRun(const TestOptions& options)
{
    std::string text;
    if (!options.host.configuration.empty()) {
        text += "-c " + ShellWord(options.host.configuration) + " ";
    }
    if (options.host.timeoutSeconds != 0) {
        text += fmt::format("--timeout {} ", options.host.timeoutSeconds);
    }
    return text + (options.allowCommand ? "--allow-command " : "");
}

std::unique_ptr<TestWriter> MakeWriter(const TestOptions& options, TextOutput& output)
{
    switch (options.format) {
    case Format::json:
        return MakeJsonResults(output);
    case Format::junit:
        return MakeJunitResults(output);
    default:
        return MakeTextResults(OptionsOfRun(options), output);
    }
}

bool IsCoveredEnough(const TestSummary& summary)
{
    return std::all_of(summary.coverage.begin(), summary.coverage.end(), [&](const CoverageResult& result) {
        return result.coverage->Percent() >= summary.leastCoverage.value_or(0);
    });
}

} // namespace

ExitStatus RunTest(const TestOptions& options)
{
    if (options.init) {
        return RunTestInit(options);
    }
    RequireTestUse(options);
    const std::vector<analysis::Suite> suites = ReadSuites(options);
    StartLog(options.host);
    OutputFile file(std::nullopt);
    FileOutput output(file);
    const std::unique_ptr<TestWriter> writer = MakeWriter(options, output);
    TestRun run(options, *writer);
    for (const analysis::Suite& suite : suites) {
        run.Run(suite);
    }
    const TestSummary summary = run.Summary();
    writer->Finish(summary);
    file.Finish();
    return summary.failed == 0 && IsCoveredEnough(summary) ? ExitStatus::success : ExitStatus::rulesAreWrong;
}

} // namespace secm::acfilter
