// An explained answer, for people and for programs.
#pragma once

#include "analysis/trace/Trace.h"

#include <string>

namespace secm::acfilter {

struct TextStyle {
    bool isFull = false; ///< Else long lists and texts are cut short and say how long they are.
    bool hasColours = false;
    bool isForTerminal = false; ///< Then no control character of the filter goes out as it is.
};

std::string ExplanationText(const analysis::Trace& trace, const TextStyle& style);

/// One JSON object on one line, as JsonLine writes it.
std::string ExplanationJson(const analysis::Trace& trace);

/// The answer alone, likewise.
std::string AnswerJson(const std::string& userName, const analysis::Answer& answer);

} // namespace secm::acfilter
