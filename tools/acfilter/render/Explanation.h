// An explained answer, for people and for programs.
#pragma once

#include "analysis/trace/Trace.h"

namespace secm::acfilter {

inline constexpr const char* noRestriction = "no restriction: every record is visible";

struct TextStyle {
    bool isFull = false; ///< Else long lists and texts are cut short, with what they would be.
    bool hasColours = false;
    bool isForTerminal = false; ///< Then no control character of the filter goes out as it is.
};

std::string ExplanationText(const analysis::Trace& trace, const TextStyle& style);

/// One JSON object and a line end; bytes that are not UTF-8 become U+FFFD.
std::string ExplanationJson(const analysis::Trace& trace);

} // namespace secm::acfilter
