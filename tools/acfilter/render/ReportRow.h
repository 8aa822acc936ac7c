// What one user sees, field by field: a row of a report.
#pragma once

#include "analysis/trace/Trace.h"

#include <optional>
#include <string>
#include <vector>

namespace secm::acfilter {

/// What a field leaves a user: all, when it is held outright; none, which hides every record; or the records of these
/// values. Not asked: the answer was certain before.
enum class FieldAccess { all, none, values, notAsked };

/// "all", "none", "values" or "not asked".
const char* NameOf(FieldAccess access);

struct AccessCell {
    FieldAccess access = FieldAccess::notAsked;
    std::vector<std::string> values; ///< Each once, in the order in which they are granted; "%my%" is replaced.
    bool restrictsNothing = false;   ///< There are values, but the field adds no clause.
};

struct AccessRow {
    std::string user;
    std::optional<std::string> group; ///< Nothing: the user is not known.
    analysis::Outcome outcome;
    std::vector<AccessCell> cells; ///< Of each field of the repository.
    std::string filter;
};

AccessRow AccessOf(const analysis::Trace& trace, std::size_t fieldCount);

} // namespace secm::acfilter
