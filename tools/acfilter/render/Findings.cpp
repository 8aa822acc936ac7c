#include "tools/acfilter/render/Findings.h"

#include "tools/acfilter/render/Json.h"
#include "tools/acfilter/render/Printable.h"

#include <fmt/format.h>

namespace secm::acfilter {

namespace {

const char* NameOf(analysis::Severity severity)
{
    return severity == analysis::Severity::error ? "error" : "warning";
}

std::string Coloured(analysis::Severity severity)
{
    constexpr int red = 31;
    constexpr int yellow = 33;
    return fmt::format("\033[{}m{}\033[0m", severity == analysis::Severity::error ? red : yellow, NameOf(severity));
}

std::string Counted(std::size_t count, const char* noun)
{
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

} // namespace

std::string FindingText(const analysis::Finding& finding, bool hasColours)
{
    const CFG_Place& place = finding.place;
    return fmt::format("{}:{}:{}: {} {}: {}\n    so: {}\n    do: {}\n", Printable(place.file), place.line, place.column,
                       hasColours ? Coloured(finding.severity) : NameOf(finding.severity), finding.code,
                       Printable(finding.problem), Printable(finding.effect), Printable(finding.remedy));
}

std::string FindingCountText(std::size_t errors, std::size_t warnings)
{
    return errors + warnings == 0 ? "no findings\n"
                                  : Counted(errors, "error") + ", " + Counted(warnings, "warning") + "\n";
}

std::string FindingJson(const analysis::Finding& finding)
{
    return JsonLine({{"code", finding.code},
                     {"severity", NameOf(finding.severity)},
                     {"file", finding.place.file},
                     {"line", finding.place.line},
                     {"column", finding.place.column},
                     {"repository", finding.repository},
                     {"problem", finding.problem},
                     {"effect", finding.effect},
                     {"remedy", finding.remedy}});
}

std::string SummaryText(const RepositorySummary& summary)
{
    std::string text;
    for (const analysis::UsersOfOutcome& users : summary.users) {
        std::string names;
        for (const std::string& name : users.first) {
            names += (names.empty() ? "" : ", ") + Printable(name);
        }
        const auto more = users.count - users.first.size();
        text += fmt::format("{}: {} see{} {}: {}{}\n    because: {}\n", Printable(summary.repository),
                            Counted(users.count, "user"), users.count == 1 ? "s" : "",
                            users.outcome == analysis::Outcome::hideAll ? "nothing" : "everything", names,
                            more == 0 ? "" : fmt::format(" and {} more", more), Printable(users.reason));
    }
    return text;
}

std::string SummaryJson(const RepositorySummary& summary)
{
    std::string lines;
    for (const analysis::UsersOfOutcome& users : summary.users) {
        lines += JsonLine({{"repository", summary.repository},
                           {"outcome", analysis::NameOf(users.outcome)},
                           {"count", users.count},
                           {"users", users.first},
                           {"because", users.reason}});
    }
    return lines;
}

} // namespace secm::acfilter
