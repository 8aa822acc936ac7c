// An explained answer, for people and for programs.
#pragma once

#include "analysis/trace/Trace.h"

#include <string>

namespace secm::acfilter {

struct TextStyle {
    bool isFull = false; ///< False: long lists and texts are cut short and say how long they are.
    bool hasColours = false;
    bool isForTerminal = false; ///< Control characters of the filter are escaped too.
};

std::string ExplanationText(const analysis::Trace& trace, const TextStyle& style);

/// One JSON object on one line, as JsonLine writes it.
std::string ExplanationJson(const analysis::Trace& trace);

/// The answer alone, likewise.
std::string AnswerJson(const std::string& userName, const analysis::Answer& answer);

} // namespace secm::acfilter
