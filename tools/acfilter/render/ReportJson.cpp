// A report for programs, one JSON object a line. The keys are documented and stay.
#include "tools/acfilter/render/ReportWriter.h"

#include "tools/acfilter/render/Json.h"

namespace secm::acfilter {

namespace {

class JsonReport final : public ReportWriter {
public:
    JsonReport(const ReportHead& reportHead, TextOutput& textOutput) : head(reportHead), output(textOutput) {}

    void Add(const ReportRow& row) override
    {
        Json fields = Json::array();
        for (std::size_t index = 0; index < row.cells.size(); ++index) {
            const ReportCell& cell = row.cells[index];
            const bool hasValues = cell.access == FieldAccess::values;
            fields.push_back({{"field", head.fields.at(index)},
                              {"access", NameOf(cell.access)},
                              {"count", hasValues ? Json(cell.values.size()) : Json(nullptr)},
                              {"values", hasValues && head.showValues ? Json(cell.values) : Json(nullptr)},
                              {"restrictsNothing", cell.restrictsNothing}});
        }
        Json object = {{"user", row.user},
                       {"group", row.group ? Json(*row.group) : Json(nullptr)},
                       {"outcome", NameOf(row.outcome)},
                       {"fields", std::move(fields)},
                       {"filter", row.filter}};
        if (row.rows) {
            object["rows"] = RowsJson(*row.rows);
        }
        if (head.record) {
            object["sees"] = row.rows->sees ? Json(*row.rows->sees) : Json(nullptr);
        }
        output.Write(JsonLine(object));
    }

private:
    const ReportHead& head;
    TextOutput& output;
};

} // namespace

std::unique_ptr<ReportWriter> MakeJsonReport(const ReportHead& head, TextOutput& output)
{
    return std::make_unique<JsonReport>(head, output);
}

} // namespace secm::acfilter
