// A report for spreadsheets.
#include "tools/acfilter/render/ReportWriter.h"

#include "tools/acfilter/render/Csv.h"
#include "tools/acfilter/render/Printable.h"

namespace secm::acfilter {

namespace {

class CsvReport final : public ReportWriter {
public:
    CsvReport(const ReportHead& reportHead, TextOutput& textOutput) : head(reportHead), output(textOutput)
    {
        std::vector<std::string> titles = {"user", "group", "outcome"};
        if (!head.data.empty()) {
            titles.insert(titles.end(), {"rows visible", "rows of all", "rows refused because"});
        }
        if (head.record) {
            titles.emplace_back("sees the record");
        }
        titles.insert(titles.end(), head.fields.begin(), head.fields.end());
        titles.emplace_back("filter");
        Write(std::move(titles));
    }

    void Add(const ReportRow& row) override
    {
        std::vector<std::string> texts = {row.user, row.group.value_or(""), NameOf(row.outcome)};
        if (row.rows) {
            const bool isRefused = !row.rows->error.empty();
            texts.push_back(isRefused ? "" : std::to_string(row.rows->visible));
            texts.push_back(std::to_string(row.rows->all));
            texts.push_back(row.rows->error);
        }
        if (head.record) {
            texts.emplace_back(!row.rows->sees ? "" : *row.rows->sees ? "yes" : "no");
        }
        for (const ReportCell& cell : row.cells) {
            texts.push_back(CellText(cell, head.showValues ? Listed(cell.values) : std::string()));
        }
        texts.push_back(row.filter);
        Write(std::move(texts));
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

    void Write(std::vector<std::string> texts)
    {
        if (head.isForTerminal) {
            for (std::string& text : texts) {
                text = Printable(text);
            }
        }
        output.Write(CsvLine(texts));
    }

    const ReportHead& head;
    TextOutput& output;
};

} // namespace

std::unique_ptr<ReportWriter> MakeCsvReport(const ReportHead& head, TextOutput& output)
{
    return std::make_unique<CsvReport>(head, output);
}

} // namespace secm::acfilter
