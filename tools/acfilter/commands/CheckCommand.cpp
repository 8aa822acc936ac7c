#include "tools/acfilter/commands/CheckCommand.h"

#include "analysis/check/Check.h"
#include "platform/configuration/ConfigurationPaths.h"
#include "platform/security_manager/SECM_Listing.h"
#include "tools/acfilter/commands/Configuration.h"
#include "tools/acfilter/commands/Log.h"
#include "tools/acfilter/io/OutputFile.h"
#include "tools/acfilter/io/StandardStreams.h"
#include "tools/acfilter/render/Findings.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>
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

std::vector<analysis::Finding> CheckGrants(const CheckOptions& options, const analysis::ConfigurationCheck& check)
{
    if (openSECM_Listing == nullptr) {
        throw std::runtime_error("the security manager in use cannot list its users, which check needs for "
                                 "--security; leave the option out to check the configuration alone");
    }
    const auto security = openSECM_Listing(options.host.securityDatabase.c_str(), options.host.timeoutSeconds);
    security->CheckIntegrity();
    std::vector<analysis::Finding> findings = check.CheckGrants(*security);
    for (analysis::Finding& finding : findings) {
        if (finding.place.file.empty()) {
            finding.place.file = "--security";
        }
    }
    return findings;
}

std::vector<analysis::Finding> FindingsOf(const CheckOptions& options)
{
    constexpr int nothing = 0; // check reports what the module would log
    StartLog(options.host, nothing);
    UseConfiguration(options.host);
    const analysis::ConfigurationCheck check = CheckConfiguration(options);
    std::vector<analysis::Finding> findings = check.Findings();
    if (options.withSecurity) {
        const std::vector<analysis::Finding> granted = CheckGrants(options, check);
        findings.insert(findings.end(), granted.begin(), granted.end());
        std::sort(findings.begin(), findings.end());
    }
    return findings;
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
    const std::vector<analysis::Finding> findings = FindingsOf(options);
    const std::size_t errors = CountErrors(findings);
    const bool hasColours = OutputTakesColours();
    for (const analysis::Finding& finding : findings) {
        output.Write(options.format == Format::json ? FindingJson(finding) : FindingText(finding, hasColours));
    }
    if (options.format == Format::text) {
        output.Write(FindingCountText(errors, findings.size() - errors));
    }
    output.Finish();
    return errors > 0 || (options.isStrict && !findings.empty()) ? ExitStatus::configurationIsWrong
                                                                 : ExitStatus::success;
}

} // namespace secm::acfilter
