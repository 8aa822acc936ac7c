// What one user sees, field by field: a row of a report.
#pragma once

#include "analysis/trace/Trace.h"
#include "tools/acfilter/render/Rows.h"

#include <optional>
#include <string>
#include <vector>

namespace secm::acfilter {

/// Which records a field leaves a user. All: the field is held outright. None: every record is hidden. Values: the
/// records with certain values. Not asked: an earlier field hid everything.
enum class FieldAccess { all, none, values, notAsked };

/// "all", "none", "values" or "not asked".
const char* NameOf(FieldAccess access);

struct ReportCell {
    FieldAccess access = FieldAccess::notAsked;
    std::vector<std::string> values; ///< Each once, in the order in which they are granted; "%my%" is replaced.
    bool restrictsNothing = false;   ///< There are values, but the field adds no clause.
};

struct ReportRow {
    std::string user;
    std::optional<std::string> group; ///< No value: the user is not known.
    analysis::Outcome outcome;
    std::vector<ReportCell> cells; ///< Of each field of the repository.
    std::string filter;
    std::optional<RowsSeen> rows; ///< No value: the filter was not tried on rows.

    /// Whether the filter that is to hide every record lets rows through.
    bool ShowsHidden() const { return rows && rows->visible != 0 && outcome == analysis::Outcome::hideAll; }
};

/// `fieldCount` is the number of the repository's fields; the later ones that the trace lacks are "not asked".
ReportRow RowOf(const analysis::Trace& trace, std::size_t fieldCount);

/// A cell for people: "all", "none", "not asked", or how many values; with `values` (a list of them) these follow.
std::string CellText(const ReportCell& cell, const std::string& values);

} // namespace secm::acfilter
