#include "analysis/compare/RowComparison.h"

#include "analysis/data/DataSource.h"

namespace secm::analysis {

namespace {

Change ChangeOnRows(const RowChange& rows, Change byValues)
{
    if (rows.gained == 0 && rows.lost == 0) {
        return byValues;
    }
    const Change onRows = rows.lost == 0 ? Change::wider : rows.gained == 0 ? Change::narrower : Change::changed;
    // The rows that only values differ in may come later.
    return byValues == Change::changed || byValues == onRows ? onRows : Change::changed;
}

} // namespace

void CompareRows(UserChange& user, DataSource& data, std::size_t examples)
{
    if (user.before.filter == user.after.filter) {
        return;
    }
    const RowFilter before = RowFilterOf(user.before);
    const RowFilter after = RowFilterOf(user.after);
    RowChange rows;
    try {
        RowDifference gained = data.Difference(after, before, examples);
        RowDifference lost = data.Difference(before, after, examples);
        rows = {gained.count, lost.count, std::move(gained.keys), std::move(lost.keys), {}};
        user.change = ChangeOnRows(rows, user.change);
    } catch (const FilterRefused& error) {
        rows = {0, 0, {}, {}, error.what()};
    }
    user.rows = std::move(rows);
}

} // namespace secm::analysis
