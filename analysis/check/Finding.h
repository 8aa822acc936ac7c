// Something in a configuration or a security database that an administrator would regret.
#pragma once

#include "platform/configuration/CFG_Listing.h"

#include <compare>
#include <string>
#include <utility>
#include <vector>

namespace secm::analysis {

enum class Severity { error, warning };

/// Findings sort by place, then by code.
struct Finding {
    CFG_Place place; ///< Of a name that is wrong, or of the table that lacks one.
    std::string code;
    Severity severity;
    std::string repository; ///< Empty: it concerns more than one.
    std::string problem;
    std::string effect; ///< What will happen to which users.
    std::string remedy;

    auto operator<=>(const Finding&) const = default;
};

/// Where the rules put what they find in one repository, or in what all repositories share.
class Report {
public:
    Report(std::vector<Finding>& into, std::string ofRepository) : findings(into), repository(std::move(ofRepository))
    {
    }

    void Error(const char* code, const CFG_Place& place, std::string problem, std::string effect, std::string remedy)
    {
        findings.push_back(
            {place, code, Severity::error, repository, std::move(problem), std::move(effect), std::move(remedy)});
    }

    void Warn(const char* code, const CFG_Place& place, std::string problem, std::string effect, std::string remedy)
    {
        findings.push_back(
            {place, code, Severity::warning, repository, std::move(problem), std::move(effect), std::move(remedy)});
    }

    /// For what is not this repository's alone; found by several, it is told once.
    Report Shared() const { return {findings, ""}; }

private:
    std::vector<Finding>& findings;
    std::string repository;
};

} // namespace secm::analysis
