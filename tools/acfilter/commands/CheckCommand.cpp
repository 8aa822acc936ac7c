// Gathers what all rules find, and prints it in the order of the files.
#include "tools/acfilter/commands/CheckCommand.h"

#include "analysis/check/CheckedConfiguration.h"
#include "analysis/check/ConfigurationCheck.h"
#include "analysis/check/SecurityCheck.h"
#include "platform/security_manager/SECM_Listing.h"
#include "tools/acfilter/cli/TextOption.h"
#include "tools/acfilter/commands/HostOptions.h"
#include "tools/acfilter/io/OutputFile.h"
#include "tools/acfilter/io/StandardStreams.h"
#include "tools/acfilter/render/Json.h"
#include "tools/acfilter/render/Printable.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace secm::acfilter {

namespace {

struct CheckOptions {
    HostOptions host;
    bool oneRepository = false;
    bool withSecurity = false;
    bool strict = false;
    std::string format = "text";
};

std::vector<analysis::Finding> Check(CheckOptions& options)
{
    const char* logLevel = std::getenv("TMR_LOG_LEVEL");
    if (!options.host.logLevel && (logLevel == nullptr || *logLevel == '\0')) {
        options.host.logLevel = 0; // what the module would log are findings
    }
    ApplyHostOptions(options.host);
    if (CFG_ListEntries == nullptr) {
        throw std::runtime_error("the configuration library in use cannot list what it holds, which check needs");
    }
    if (options.oneRepository) {
        RequireRepository(options.host);
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

const char* NameOf(analysis::Severity severity)
{
    return severity == analysis::Severity::error ? "error" : "warning";
}

std::string AsJson(const analysis::Finding& finding)
{
    const Json object = {{"code", finding.code},           {"severity", NameOf(finding.severity)},
                         {"file", finding.place.file},     {"line", finding.place.line},
                         {"column", finding.place.column}, {"repository", finding.repository},
                         {"problem", finding.problem},     {"effect", finding.effect},
                         {"remedy", finding.remedy}};
    return JsonLine(object);
}

std::string Coloured(analysis::Severity severity)
{
    if (!OutputTakesColours()) {
        return NameOf(severity);
    }
    return (severity == analysis::Severity::error ? "\033[31m" : "\033[33m") + std::string(NameOf(severity)) +
           "\033[0m";
}

std::string AsText(const analysis::Finding& finding)
{
    const CFG_Place& place = finding.place;
    return Printable(place.file) + ":" + std::to_string(place.line) + ":" + std::to_string(place.column) + ": " +
           Coloured(finding.severity) + " " + finding.code + ": " + Printable(finding.problem) +
           "\n    so: " + Printable(finding.effect) + "\n    do: " + Printable(finding.remedy) + "\n";
}

std::string Counted(std::size_t count, const std::string& noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

void PrintFindings(CheckOptions& options, ExitStatus& status)
{
    OutputFile output(std::nullopt);
    const std::vector<analysis::Finding> findings = Check(options);
    std::string text;
    for (const analysis::Finding& finding : findings) {
        text += options.format == "json" ? AsJson(finding) : AsText(finding);
    }
    const auto isError = [](const analysis::Finding& finding) { return finding.severity == analysis::Severity::error; };
    const auto errors = static_cast<std::size_t>(std::count_if(findings.begin(), findings.end(), isError));
    if (options.format == "text") {
        text += (findings.empty() ? "no findings"
                                  : Counted(errors, "error") + ", " + Counted(findings.size() - errors, "warning")) +
                "\n";
    }
    output.Write(text);
    output.Finish();
    if (errors > 0 || (options.strict && !findings.empty())) {
        status = configurationIsWrong;
    }
}

} // namespace

void AddCheckCommand(CLI::App& app, ExitStatus& status)
{
    CLI::App* command = app.add_subcommand("check", "Report what is wrong with a configuration, and what to do");
    auto options = std::make_shared<CheckOptions>();
    AddHostOptions(*command, options->host, {.securityDatabase = false, .repository = false});
    command->add_flag("--strict", options->strict, "Let warnings count as errors for the exit status");
    AddOption(*command, "--format", options->format, "text for people; json: one object a line")
        ->check(CLI::IsMember({"text", "json"}));
    command->callback([command, options, &status] {
        options->oneRepository = command->count("--repository") > 0;
        options->withSecurity = command->count("--security") > 0;
        PrintFindings(*options, status);
    });
}

} // namespace secm::acfilter
