// A report as people read it on a terminal: how many users there are, and a table. The rows wait for the end, when the
// widths of the columns are known.
#include "tools/acfilter/render/ReportWriter.h"

#include "tools/acfilter/render/Printable.h"
#include "tools/acfilter/render/TextLayout.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace secm::acfilter {

namespace {

constexpr std::size_t widestColumn = 40;
constexpr char columnEnd = '\t'; // which Printable leaves in no text

class TextReport final : public ReportWriter {
public:
    TextReport(const ReportHead& reportHead, TextOutput& textOutput)
        : head(reportHead), output(textOutput), seeing(textOutput.MakeWaitingLines()),
          rows(textOutput.MakeWaitingLines())
    {
        std::vector<std::string> titles = {"user", "group", "outcome"};
        if (!head.data.empty()) {
            titles.emplace_back("rows");
        }
        if (head.record) {
            titles.push_back("record " + *head.record);
        }
        titles.insert(titles.end(), head.fields.begin(), head.fields.end());
        widths.resize(titles.size());
        titles.emplace_back("filter");
        for (std::string& title : titles) {
            title = Printable(title);
        }
        Keep(titles, *seeing);
    }

    void Add(const ReportRow& row) override
    {
        std::vector<std::string> texts = {Printable(row.user), Printable(row.group.value_or("")), NameOf(row.outcome)};
        if (row.rows) {
            texts.push_back(RowsText(*row.rows));
        }
        if (head.record) {
            texts.emplace_back(!row.rows->sees ? "unknown" : *row.rows->sees ? "sees" : "does not see");
        }
        for (const ReportCell& cell : row.cells) {
            const auto value = [&](std::size_t n) { return Quoted(cell.values[n]); };
            texts.push_back(
                CellText(cell, head.showValues ? ShortList(cell.values.size(), value, head.isFull) : std::string()));
        }
        texts.push_back(row.filter.empty() ? NoRestriction() : ShortText(row.filter, head.isFull));
        // Those who see the record come first.
        Keep(texts, row.rows && row.rows->sees.value_or(false) ? *seeing : *rows);
        counts.Add(row.outcome);
    }

    void Finish(const RowsSummary& rowsSummary) override
    {
        std::string summary = fmt::format("{} {}:", counts.All(), counts.All() == 1 ? "user" : "users");
        for (const analysis::Outcome outcome : allOutcomes) {
            summary +=
                fmt::format("{} {} {}", outcome == allOutcomes.front() ? "" : ",", counts.Of(outcome), NameOf(outcome));
        }
        summary += "\n";
        for (const std::string& sentence : rowsSummary.InWords(head)) {
            summary += Printable(sentence) + "\n";
        }
        output.Write(summary + "\n");
        for (WaitingLines* lines : {seeing.get(), rows.get()}) {
            lines->ForEachLine([&](std::string_view line) { output.Write(Aligned(line) + "\n"); });
        }
    }

private:
    void Keep(const std::vector<std::string>& texts, WaitingLines& lines)
    {
        std::string line;
        for (std::size_t column = 0; column < widths.size(); ++column) {
            widths[column] = std::min(widestColumn, std::max(widths[column], ColumnCount(texts[column])));
            line.append(texts[column]).append(1, columnEnd);
        }
        lines.Write(line.append(texts.back()).append("\n"));
    }

    std::string Aligned(std::string_view line) const
    {
        std::string aligned;
        for (const std::size_t width : widths) {
            const std::string_view text = line.substr(0, line.find(columnEnd));
            line.remove_prefix(text.size() + 1);
            const std::size_t used = ColumnCount(text);
            aligned.append(text).append(used < width ? width - used : 0, ' ').append("  ");
        }
        return aligned.append(line);
    }

    const ReportHead& head;
    TextOutput& output;
    std::unique_ptr<WaitingLines> seeing; // the titles, then users who see the record that was asked about
    std::unique_ptr<WaitingLines> rows;   // the other users
    std::vector<std::size_t> widths;      // of all columns but the last
    OutcomeCounts counts;
};

} // namespace

std::unique_ptr<ReportWriter> MakeTextReport(const ReportHead& head, TextOutput& output)
{
    return std::make_unique<TextReport>(head, output);
}

} // namespace secm::acfilter
