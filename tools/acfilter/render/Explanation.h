// An explained answer, for people and for programs.
#pragma once

#include "analysis/trace/GrantOrigins.h"
#include "analysis/trace/Trace.h"
#include "tools/acfilter/render/Rows.h"

#include <optional>
#include <string>
#include <vector>

namespace secm::acfilter {

struct TextStyle {
    bool isFull = false; ///< False: long lists and texts are cut short and say how long they are.
    bool hasColours = false;
    bool isForTerminal = false; ///< Control characters of the filter are escaped too.
};

/// An answer with what is known about it.
struct Explanation {
    analysis::Trace trace;
    /// Of the fields of the trace, as analysis::GrantsOf gives them; empty when the security manager lists no grants.
    std::vector<analysis::FieldGrants> grants;
    std::vector<std::string> notes;              ///< Sentences about the changes that were tried.
    std::optional<RowsSeen> rows;                ///< No value: the filter was not tried on rows.
    std::optional<analysis::RecordTrace> record; ///< No value: no record was asked about.
};

std::string ExplanationText(const Explanation& explanation, const TextStyle& style);

/// One JSON object on one line, as JsonLine writes it.
std::string ExplanationJson(const Explanation& explanation);

/// The answer alone, likewise.
std::string AnswerJson(const std::string& userName, const analysis::Answer& answer);

} // namespace secm::acfilter
