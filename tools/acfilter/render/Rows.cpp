#include "tools/acfilter/render/Rows.h"

#include "tools/acfilter/render/Printable.h"

#include <fmt/format.h>

namespace secm::acfilter {

std::string Percent(std::uint64_t part, std::uint64_t whole)
{
    constexpr std::uint64_t perMille = 1000;
    const std::uint64_t share = whole == 0 ? 0 : (part * perMille + whole / 2) / whole;
    return fmt::format("{}.{}", share / 10, share % 10);
}

std::string RowsText(const RowsSeen& rows)
{
    return rows.error.empty() ? fmt::format("{} of {} ({} %)", rows.visible, rows.all, Percent(rows.visible, rows.all))
                              : "refused: " + Printable(rows.error);
}

Json RowsJson(const RowsSeen& rows)
{
    return rows.error.empty() ? Json{{"visible", rows.visible}, {"of", rows.all}} : Json{{"error", rows.error}};
}

Json RecordJson(const analysis::RecordTrace& record)
{
    const auto boolean = [](std::optional<bool> value) { return value ? Json(*value) : Json(nullptr); };
    Json clauses = Json::array();
    for (const analysis::ClauseOnRecord& clause : record.clauses) {
        Json columns = Json::object();
        for (const auto& [name, value] : clause.columns) {
            columns[name] = value ? Json(*value) : Json(nullptr);
        }
        clauses.push_back({{"field", TextOrNull(clause.field)},
                           {"clause", clause.clause},
                           {"holds", boolean(clause.holds)},
                           {"error", TextOrNull(clause.error)},
                           {"columns", std::move(columns)}});
    }
    return {{"key", record.key},
            {"visible", boolean(record.isVisible)},
            {"error", TextOrNull(record.error)},
            {"clauses", std::move(clauses)}};
}

} // namespace secm::acfilter
