#include "tools/acfilter/commands/CheckCommand.h"

#include "analysis/check/CheckedConfiguration.h"
#include "analysis/check/ConfigurationCheck.h"
#include "analysis/check/SecurityCheck.h"
#include "platform/security_manager/SECM_Listing.h"
#include "tools/acfilter/commands/Configuration.h"
#include "tools/acfilter/commands/Log.h"
#include "tools/acfilter/io/OutputFile.h"
#include "tools/acfilter/io/StandardStreams.h"
#include "tools/acfilter/render/Findings.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace secm::acfilter {

namespace {

std::vector<analysis::Finding> FindingsOf(const CheckOptions& options)
{
    constexpr int nothing = 0; // what the module would log are findings
    StartLog(options.host, nothing);
    UseConfiguration(options.host);
    if (CFG_ListEntries == nullptr) {
        throw std::runtime_error("the configuration library in use cannot list what it holds, which check needs");
    }
    if (options.oneRepository) {
        RequireRepository(options.host.repository, options.host.configuration);
    }
    const std::vector<analysis::CheckedRepository> repositories =
        analysis::ReadRepositories(options.oneRepository ? &options.host.repository : nullptr);
    if (repositories.empty()) {
        throw std::runtime_error(options.host.configuration +
                                 ": there is no repository to check; add the table [zarvona.system.applications."
                                 "securitymanager.unified_access_control.repositories.NAME] with its settings");
    }
    std::vector<analysis::Finding> findings;
    analysis::CheckConfiguration(repositories, findings);
    if (options.withSecurity) {
        if (openSECM_Listing == nullptr) {
            throw std::runtime_error("the security manager in use cannot list its users, which check needs for "
                                     "--security; leave the option out to check the configuration alone");
        }
        const auto security = openSECM_Listing(options.host.securityDatabase.c_str(), options.host.timeoutSeconds);
        security->CheckIntegrity();
        analysis::CheckSecurity(repositories, *security, findings);
    }
    std::sort(findings.begin(), findings.end());
    findings.erase(std::unique(findings.begin(), findings.end()), findings.end());
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
