#include "tools/acfilter/render/ReportRow.h"

#include "analysis/trace/Reasons.h"

#include <fmt/format.h>

namespace secm::acfilter {

namespace {

ReportCell CellOf(const analysis::FieldTrace& field)
{
    if (field.isHeld) {
        return {FieldAccess::all, {}, false};
    }
    if (field.conditions.empty()) {
        return {FieldAccess::none, {}, false};
    }
    return {FieldAccess::values, analysis::EachOnce(analysis::ValuesOf(field)), analysis::RestrictsNothing(field)};
}

} // namespace

const char* NameOf(FieldAccess access)
{
    switch (access) {
    case FieldAccess::all:
        return "all";
    case FieldAccess::none:
        return "none";
    case FieldAccess::values:
        return "values";
    default:
        return "not asked";
    }
}

std::string CellText(const ReportCell& cell, const std::string& values)
{
    if (cell.access != FieldAccess::values) {
        return NameOf(cell.access);
    }
    return fmt::format("{}{}{}{}", cell.values.size(), values.empty() ? "" : ": ", values,
                       cell.restrictsNothing ? " (restricts nothing)" : "");
}

ReportRow RowOf(const analysis::Trace& trace, std::size_t fieldCount)
{
    ReportRow row{trace.request.userName, trace.groupName, trace.answer.outcome, {}, trace.answer.filter, {}};
    for (const analysis::FieldTrace& field : trace.fields) {
        row.cells.push_back(CellOf(field));
    }
    row.cells.resize(fieldCount);
    return row;
}

} // namespace secm::acfilter
