#include "tools/acfilter/commands/CheckCommand.h"

#include "analysis/check/Check.h"
#include "analysis/check/OutcomeSummary.h"
#include "analysis/trace/Tracer.h"
#include "platform/configuration/ConfigurationPaths.h"
#include "platform/security_manager/SECM_Listing.h"
#include "tools/acfilter/commands/Configuration.h"
#include "tools/acfilter/commands/Connection.h"
#include "tools/acfilter/commands/Log.h"
#include "tools/acfilter/io/OutputFile.h"
#include "tools/acfilter/io/Progress.h"
#include "tools/acfilter/io/StandardStreams.h"
#include "tools/acfilter/render/Findings.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace secm::acfilter {

namespace {

analysis::ConfigurationCheck CheckConfiguration(const CheckOptions& options)
{
    try {
        return analysis::ConfigurationCheck(options.oneRepository ? std::optional(options.host.repository)
                                                                  : std::nullopt);
    } catch (const analysis::NoRepositoryError&) {
        if (options.oneRepository) {
            RequireRepository(options.host.repository, options.host.configuration);
        }
        throw std::runtime_error(
            fmt::format("{}: there is no repository to check; add the table [{}.NAME] with its settings",
                        options.host.configuration, configuration_paths::Dotted(configuration_paths::repositories)));
    }
}

struct Results {
    std::vector<analysis::Finding> findings;
    std::vector<RepositorySummary> summaries; ///< Empty without a security database.
};

std::unique_ptr<SECM_ListingInterface> OpenListing(const HostOptions& host)
{
    if (openSECM_Listing == nullptr) {
        throw std::runtime_error("the security manager in use cannot list its users, which check needs for "
                                 "--security; leave the option out to check the configuration alone");
    }
    return openSECM_Listing(host.securityDatabase.c_str(), host.timeoutSeconds);
}

// Lets the module answer every user. Many failures in a row are those of the database, which would take their time.
analysis::OutcomeSummary Summarize(const HostOptions& host, analysis::Tracer tracer, SECM_ListingInterface& security,
                                   Progress& progress)
{
    constexpr unsigned long long mostFailures = 100;
    Connect(tracer, host);
    analysis::OutcomeSummary summary;
    security.ForEachUser([&](const std::string& userName) {
        if (summary.FailureCount() >= mostFailures) {
            return;
        }
        try {
            summary.Add(tracer.Explain({userName, "", false}));
        } catch (const std::runtime_error& error) {
            summary.AddFailure(userName, error.what());
        }
        progress.CountOne();
    });
    return summary;
}

void AddUsers(const HostOptions& host, const std::vector<std::string>& repositories, SECM_ListingInterface& security,
              Results& results)
{
    const bool failuresAreExplained =
        std::any_of(results.findings.begin(), results.findings.end(),
                    [](const analysis::Finding& finding) { return finding.code == "AC059"; });
    Progress progress(false);
    for (analysis::Tracer& tracer : analysis::Tracer::OfRepositories(repositories)) {
        const std::string repository = tracer.Rules().repository;
        const analysis::OutcomeSummary summary = Summarize(host, std::move(tracer), security, progress);
        if (auto failures = summary.Failures(repository); failures && !failuresAreExplained) {
            results.findings.push_back(std::move(*failures));
        }
        results.summaries.push_back({repository, summary.Users()});
    }
}

void CheckSecurity(const CheckOptions& options, const analysis::ConfigurationCheck& check, Results& results)
{
    const auto security = OpenListing(options.host);
    security->CheckIntegrity();
    const std::vector<analysis::Finding> granted = check.CheckGrants(*security);
    results.findings.insert(results.findings.end(), granted.begin(), granted.end());
    AddUsers(options.host, check.Repositories(), *security, results);
    for (analysis::Finding& finding : results.findings) {
        if (finding.place.file.empty()) {
            finding.place.file = "--security";
        }
    }
    std::sort(results.findings.begin(), results.findings.end());
}

Results ResultsOf(const CheckOptions& options)
{
    constexpr int nothing = 0; // check reports what the module would log
    StartLog(options.host, nothing);
    UseConfiguration(options.host);
    const analysis::ConfigurationCheck check = CheckConfiguration(options);
    Results results{check.Findings(), {}};
    if (options.withSecurity) {
        CheckSecurity(options, check, results);
    }
    return results;
}

std::size_t CountErrors(const std::vector<analysis::Finding>& findings)
{
    const auto isError = [](const analysis::Finding& each) { return each.severity == analysis::Severity::error; };
    return static_cast<std::size_t>(std::count_if(findings.begin(), findings.end(), isError));
}

} // namespace

ExitStatus RunCheck(const CheckOptions& options)
{
    OutputFile output(std::nullopt);
    const auto [findings, summaries] = ResultsOf(options);
    const std::size_t errors = CountErrors(findings);
    const bool isJson = options.format == Format::json;
    const bool hasColours = OutputTakesColours();
    for (const analysis::Finding& finding : findings) {
        output.Write(isJson ? FindingJson(finding) : FindingText(finding, hasColours));
    }
    if (!isJson) {
        output.Write(FindingCountText(errors, findings.size() - errors));
    }
    for (const RepositorySummary& summary : summaries) {
        output.Write(isJson ? SummaryJson(summary) : SummaryText(summary));
    }
    output.Finish();
    return errors > 0 || (options.isStrict && !findings.empty()) ? ExitStatus::rulesAreWrong : ExitStatus::success;
}

} // namespace secm::acfilter
