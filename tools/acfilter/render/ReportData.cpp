// A report for programs: CSV for spreadsheets, and one JSON object a line.
#include "tools/acfilter/render/ReportWriter.h"

#include "tools/acfilter/render/Json.h"
#include "tools/acfilter/render/Printable.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace secm::acfilter {

namespace {

// `text` without the leading characters that a spreadsheet skips or takes for the end of the cell before.
std::string_view WithoutSkipped(std::string_view text)
{
    constexpr std::array<std::string_view, 12> skipped = {" ", "\t", "\r", "\n", "\v",       "\f",
                                                          ",", ";",  "|",  "\"", "\xc2\xa0", "\xe3\x80\x80"};
    for (auto next = skipped.begin(); next != skipped.end();) {
        if (text.starts_with(*next)) {
            text.remove_prefix(next->size());
            next = skipped.begin();
        } else {
            ++next;
        }
    }
    return text;
}

// Whether a spreadsheet could take `text` for a formula. Full-width signs count too.
bool MayBeFormula(std::string_view text)
{
    constexpr std::array<std::string_view, 8> beginnings = {
        "=", "+", "-", "@", "\xef\xbc\x9d", "\xef\xbc\x8b", "\xef\xbc\x8d", "\xef\xbc\xa0"};
    const std::string_view rest = WithoutSkipped(text);
    return text.starts_with('\t') || text.starts_with('\r') ||
           std::any_of(beginnings.begin(), beginnings.end(),
                       [rest](std::string_view beginning) { return rest.starts_with(beginning); });
}

// RFC 4180, and nothing that a spreadsheet would take for a formula.
class CsvReport final : public ReportWriter {
public:
    CsvReport(const ReportHead& reportHead, OutputFile& outputFile) : head(reportHead), output(outputFile)
    {
        std::vector<std::string> titles = {"user", "group", "outcome"};
        titles.insert(titles.end(), head.fields.begin(), head.fields.end());
        titles.emplace_back("filter");
        Write(titles);
    }

    void Add(const AccessRow& row) override
    {
        std::vector<std::string> texts = {row.user, row.group.value_or(""), NameOf(row.outcome)};
        for (const AccessCell& cell : row.cells) {
            texts.push_back(CellText(cell, head.showValues ? Listed(cell.values) : std::string()));
        }
        texts.push_back(row.filter);
        Write(texts);
    }

private:
    static std::string Listed(const std::vector<std::string>& values)
    {
        std::string list;
        for (const std::string& value : values) {
            list.append(list.empty() ? "'" : ", '").append(value).append("'");
        }
        return list;
    }

    std::string Cell(const std::string& text) const
    {
        std::string cell = head.isForTerminal ? Printable(text) : text;
        if (MayBeFormula(cell)) {
            cell.insert(0, 1, '\'');
        }
        if (cell.find_first_of(",\"\r\n") == std::string::npos) {
            return cell;
        }
        std::string quoted = "\"";
        for (const char character : cell) {
            quoted.append(character == '"' ? 2 : 1, character);
        }
        return quoted + "\"";
    }

    void Write(const std::vector<std::string>& texts)
    {
        std::string line = Cell(texts.front());
        std::for_each(texts.begin() + 1, texts.end(), [&](const std::string& text) { line += "," + Cell(text); });
        output.Write(line + "\r\n");
    }

    const ReportHead& head;
    OutputFile& output;
};

class JsonReport final : public ReportWriter {
public:
    JsonReport(const ReportHead& reportHead, OutputFile& outputFile) : head(reportHead), output(outputFile) {}

    void Add(const AccessRow& row) override
    {
        Json fields = Json::array();
        for (std::size_t index = 0; index < row.cells.size(); ++index) {
            const AccessCell& cell = row.cells[index];
            const bool hasValues = cell.access == FieldAccess::values;
            fields.push_back({{"field", head.fields.at(index)},
                              {"access", NameOf(cell.access)},
                              {"count", hasValues ? Json(cell.values.size()) : Json(nullptr)},
                              {"values", hasValues && head.showValues ? Json(cell.values) : Json(nullptr)},
                              {"restrictsNothing", cell.restrictsNothing}});
        }
        const Json object = {{"user", row.user},
                             {"group", row.group ? Json(*row.group) : Json(nullptr)},
                             {"outcome", NameOf(row.outcome)},
                             {"fields", std::move(fields)},
                             {"filter", row.filter}};
        output.Write(JsonLine(object));
    }

private:
    const ReportHead& head;
    OutputFile& output;
};

} // namespace

std::unique_ptr<ReportWriter> MakeCsvReport(const ReportHead& head, OutputFile& output)
{
    return std::make_unique<CsvReport>(head, output);
}

std::unique_ptr<ReportWriter> MakeJsonReport(const ReportHead& head, OutputFile& output)
{
    return std::make_unique<JsonReport>(head, output);
}

} // namespace secm::acfilter
