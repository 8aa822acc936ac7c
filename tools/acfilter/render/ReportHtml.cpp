// A report as one page that needs no other file. Each text from the configuration or the security database is escaped,
// its control characters are shown, and its direction of writing does not reach the text around it. The page allows no
// style and no script but its own, and loads nothing. Each row is one line, by which the script finds it.
#include "tools/acfilter/render/ReportWriter.h"

#include "ReportPage.h"
#include "tools/acfilter/render/Printable.h"
#include "tools/acfilter/render/Sha256.h"
#include "tools/acfilter/render/TextLayout.h"

#include <fmt/format.h>

#include <string_view>

namespace secm::acfilter {

namespace {

std::string Escaped(const std::string& text)
{
    std::string escaped;
    for (const char character : Printable(text)) {
        escaped += character == '&'   ? "&amp;"
                   : character == '<' ? "&lt;"
                   : character == '>' ? "&gt;"
                   : character == '"' ? "&quot;"
                                      : std::string(1, character);
    }
    return escaped;
}

std::string Isolated(const std::string& text)
{
    return "<bdi>" + Escaped(text) + "</bdi>";
}

const char* MeaningOf(analysis::Outcome outcome)
{
    switch (outcome) {
    case analysis::Outcome::unrestricted:
        return "every record is visible";
    case analysis::Outcome::restricted:
        return "records are visible that the filter lets through";
    case analysis::Outcome::hideAll:
        return "a field leaves no value: the filter is the one that hides every record";
    default:
        return "the user is not known: the filter is the one for such users";
    }
}

std::string CountsTable(const OutcomeCounts& counts)
{
    std::string table =
        "<table id=\"outcomes\"><caption>Users by outcome</caption>\n<thead><tr><th scope=\"col\">Outcome</th>"
        "<th scope=\"col\">Users</th><th scope=\"colgroup\" colspan=\"2\">Share</th>"
        "<th scope=\"col\">Meaning</th></tr></thead>\n<tbody>\n";
    for (const analysis::Outcome outcome : allOutcomes) {
        table += fmt::format(
            R"(<tr><th scope="row" class="{0}">{0}</th><td class="count">{1}</td><td class="count">{2} %</td>)"
            R"(<td><svg class="bar {0}" viewBox="0 0 100 8" preserveAspectRatio="none" aria-hidden="true">)"
            R"(<rect width="{2}" height="8"/></svg></td><td>{3}</td></tr>)"
            "\n",
            NameOf(outcome), counts.Of(outcome), Percent(counts.Of(outcome), counts.All()), MeaningOf(outcome));
    }
    return table + "</tbody></table>\n";
}

std::string PageHead(const ReportHead& head)
{
    const std::string title = "Who sees what: repository ";
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src 'sha256-" +
           Sha256Base64(pageStyle) + "'; script-src 'sha256-" + Sha256Base64(pageScript) +
           "'; base-uri 'none'; form-action 'none'\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
           title + Escaped(head.repository) + "</title>\n<style>" + pageStyle + "</style>\n</head>\n<body>\n<h1>" +
           title + Isolated(head.repository) + "</h1>\n";
}

std::string Facts(const ReportHead& head, const OutcomeCounts& counts)
{
    std::string facts = "<dl>\n<dt>Generated</dt><dd>" + head.generated + "</dd>\n";
    for (const FileDigest& digest : head.configuration) {
        facts += fmt::format("<dt>Configuration</dt><dd>{}<br>SHA-256 <code>{}</code></dd>\n", Isolated(digest.file),
                             digest.sha256);
    }
    if (!head.securityDatabase.empty()) {
        facts += "<dt>Security database</dt><dd>" + Isolated(head.securityDatabase) + "</dd>\n";
    }
    const std::string asked = head.withoutLogin        ? "by name, without a log-in"
                              : head.ipAddress.empty() ? "by a log-in"
                                                       : "by a log-in from " + Isolated(head.ipAddress);
    if (!head.data.empty()) {
        facts += "<dt>Rows</dt><dd>" + Isolated(head.data) + "</dd>\n";
    }
    return facts + fmt::format("<dt>Users</dt><dd>{}</dd>\n<dt>Asked</dt><dd>{}</dd>\n</dl>\n", counts.All(), asked);
}

std::string Sentences(const RowsSummary& rows, const ReportHead& head)
{
    std::string list;
    for (const std::string& sentence : rows.InWords(head)) {
        list += "<li>" + Isolated(sentence) + "</li>\n";
    }
    return list.empty()
               ? list
               : fmt::format("<ul id=\"rows\"{}>\n{}</ul>\n", rows.HasFaults() ? " class=\"alarm\"" : "", list);
}

// How many rows the filter lets through, with the share as a bar.
std::string RowsCell(const ReportRow& row)
{
    if (!row.rows->error.empty()) {
        return fmt::format(R"(<td class="alarm">{}</td>)", Isolated(RowsText(*row.rows)));
    }
    return fmt::format(R"(<td class="rows{}">{}{}<svg class="bar {}" viewBox="0 0 100 8" preserveAspectRatio="none" )"
                       R"(aria-hidden="true"><rect width="{}" height="8"/></svg></td>)",
                       row.ShowsHidden() ? " alarm" : "", RowsText(*row.rows), row.ShowsHidden() ? ": not hidden" : "",
                       NameOf(row.outcome), Percent(row.rows->visible, row.rows->all));
}

const char* RecordCell(const RowsSeen& rows)
{
    return !rows.sees   ? "<td class=\"alarm\">unknown</td>"
           : *rows.sees ? "<td class=\"sees\">sees</td>"
                        : "<td class=\"not-asked\">does not see</td>";
}

std::string TableHead(const ReportHead& head)
{
    std::string table =
        "<p>A field restricts a user to the records with certain values; a cell tells how many these are" +
        std::string(head.showValues ? ", and which" : "") +
        ". <b>all</b>: the user holds the field's permission outright and is not restricted by it. <b>none</b>: no "
        "value is left, so every record is hidden. <b>not asked</b>: the answer was certain before. <b>restricts "
        "nothing</b>: there are values, but the field adds nothing to the filter.</p>\n"
        "<div class=\"wide\" id=\"table\" role=\"region\" aria-label=\"Who sees what\" tabindex=\"0\"><noscript>\n"
        "<table id=\"access\"><caption>Who sees what</caption>\n<thead><tr><th scope=\"col\">User</th>"
        "<th scope=\"col\">Group</th><th scope=\"col\">Outcome</th>";
    table += head.data.empty() ? "" : "<th scope=\"col\">Rows</th>";
    table += head.record ? "<th scope=\"col\">Record " + Isolated(*head.record) + "</th>" : "";
    for (const std::string& field : head.fields) {
        table += "<th scope=\"col\">" + Isolated(field) + "</th>";
    }
    return table + "<th scope=\"col\">Filter</th></tr></thead>\n<tbody>\n";
}

class HtmlReport final : public ReportWriter {
public:
    HtmlReport(const ReportHead& reportHead, TextOutput& textOutput)
        : head(reportHead), output(textOutput), seeing(textOutput.MakeWaitingLines()),
          rows(textOutput.MakeWaitingLines())
    {
    }

    void Add(const ReportRow& row) override
    {
        std::string line = fmt::format(R"(<tr><th scope="row">{0}</th><td>{1}</td><td class="{2}">{2}</td>)",
                                       Isolated(row.user), Isolated(row.group.value_or("")), NameOf(row.outcome));
        line += row.rows ? RowsCell(row) : "";
        line += head.record ? RecordCell(*row.rows) : "";
        for (const ReportCell& cell : row.cells) {
            line += CellOf(cell);
        }
        line += row.filter.empty() ? fmt::format(R"(<td class="alarm">{}</td></tr>)", noRestriction)
                                   : fmt::format("<td><code>{}</code></td></tr>", Isolated(row.filter));
        (row.rows && row.rows->sees.value_or(false) ? seeing : rows)->Write(line + "\n");
        counts.Add(row.outcome);
    }

    void Finish(const RowsSummary& summary) override
    {
        output.Write(PageHead(head) + Facts(head, counts) + CountsTable(counts) + Sentences(summary, head) +
                     TableHead(head));
        for (WaitingLines* lines : {seeing.get(), rows.get()}) {
            lines->ForEachLine([&](std::string_view line) { output.Write(fmt::format("{}\n", line)); });
        }
        output.Write("</tbody></table>\n</noscript></div>\n<script>" + std::string(pageScript) +
                     "</script>\n</body>\n</html>\n");
    }

private:
    std::string CellOf(const ReportCell& cell) const
    {
        if (cell.access == FieldAccess::notAsked) {
            return "<td class=\"not-asked\">not asked</td>";
        }
        std::string values;
        for (std::size_t n = 0; head.showValues && n < cell.values.size(); ++n) {
            values += (n == 0 ? "'" : ", '") + Isolated(cell.values[n]) + "'";
        }
        const std::string kind = cell.restrictsNothing ? "alarm" : NameOf(cell.access);
        return fmt::format(R"(<td class="{}">{}</td>)", kind, CellText(cell, values));
    }

    const ReportHead& head;
    TextOutput& output;
    std::unique_ptr<WaitingLines> seeing; // users who see the record that was asked about
    std::unique_ptr<WaitingLines> rows;   // the other users
    OutcomeCounts counts;
};

} // namespace

std::unique_ptr<ReportWriter> MakeHtmlReport(const ReportHead& head, TextOutput& output)
{
    return std::make_unique<HtmlReport>(head, output);
}

} // namespace secm::acfilter
