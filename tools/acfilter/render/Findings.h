// The findings of a check, for people and for programs.
#pragma once

#include "analysis/check/Finding.h"
#include "analysis/check/OutcomeSummary.h"

#include <cstddef>
#include <string>
#include <vector>

namespace secm::acfilter {

/// Three lines: the place and the problem, its effect, and the remedy.
std::string FindingText(const analysis::Finding& finding, bool hasColours);

/// The last line: how many findings there are.
std::string FindingCountText(std::size_t errors, std::size_t warnings);

/// One JSON object on one line, as JsonLine writes it.
std::string FindingJson(const analysis::Finding& finding);

struct RepositorySummary {
    std::string repository;
    std::vector<analysis::UsersOfOutcome> users;
};

/// Two lines for each reason why users see everything or nothing: who they are, and the reason.
std::string SummaryText(const RepositorySummary& summary);

/// Likewise one JSON object, on a line of its own.
std::string SummaryJson(const RepositorySummary& summary);

} // namespace secm::acfilter
