// The findings of a check, for people and for programs.
#pragma once

#include "analysis/check/Finding.h"

#include <cstddef>
#include <string>

namespace secm::acfilter {

/// Three lines: the place and the problem, its effect, and the remedy.
std::string FindingText(const analysis::Finding& finding, bool hasColours);

/// The last line: how many findings there are.
std::string FindingCountText(std::size_t errors, std::size_t warnings);

/// One JSON object on one line, as JsonLine writes it.
std::string FindingJson(const analysis::Finding& finding);

} // namespace secm::acfilter
