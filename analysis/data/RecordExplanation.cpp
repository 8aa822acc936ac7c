#include "analysis/data/RecordExplanation.h"

#include "analysis/check/QueryText.h"

#include <fmt/format.h>

namespace secm::analysis {

namespace {

// What the filter consists of, in its order.
std::vector<ClauseOnRecord> ClausesOf(const Trace& trace)
{
    std::vector<ClauseOnRecord> clauses;
    if (trace.answer.filter.empty()) {
        return clauses;
    }
    if (trace.answer.outcome == Outcome::unknownUser || trace.answer.outcome == Outcome::hideAll) {
        const bool isOfField = trace.answer.outcome == Outcome::hideAll && !trace.fields.empty();
        clauses.push_back({isOfField ? trace.fields.back().rule->name : "", trace.answer.filter, {}, {}, {}});
        return clauses;
    }
    for (const FieldTrace& field : trace.fields) {
        if (!field.clause.empty()) {
            clauses.push_back({field.rule->name, field.clause, {}, {}, {}});
        }
    }
    return clauses;
}

bool Names(const std::string& clause, const std::string& column)
{
    return HasWord(OutsideQuotes(clause), column) || clause.find('"' + column + '"') != std::string::npos;
}

// Leaves `holds` without a value when the engine refuses the filter.
void TryOnRecord(DataSource& data, const RowFilter& filter, const std::string& key, std::optional<bool>& holds,
                 std::string& error)
{
    try {
        holds = data.Matches(filter, key);

    } catch (const FilterRefused& refused) {
        error = refused.what();
    }
}

} // namespace

RecordTrace ExplainRecord(const Trace& trace, DataSource& data, const std::string& key)
{
    if (!data.Matches(std::nullopt, key)) {
        throw DataError(fmt::format("there is no record with the key '{}'", key));
    }
    const std::vector<ColumnValue> row = data.Row(key);
    RecordTrace record{key, {}, {}, ClausesOf(trace)};
    TryOnRecord(data, RowFilterOf(trace.answer), key, record.isVisible, record.error);
    for (ClauseOnRecord& clause : record.clauses) {
        TryOnRecord(data, clause.clause, key, clause.holds, clause.error);
        for (const ColumnValue& column : row) {
            if (Names(clause.clause, column.first)) {
                clause.columns.push_back(column);
            }
        }
    }
    return record;
}

} // namespace secm::analysis
