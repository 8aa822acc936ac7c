// A report as one page that needs nothing else and can be kept. Whatever comes from the configuration or the security
// database is text: escaped, with its control characters shown and its direction of writing kept to itself; and the
// page lets nothing run or load but the style and the script that are its own.
#include "tools/acfilter/render/ReportWriter.h"

#include "ReportPage.h"
#include "tools/acfilter/io/TemporaryLines.h"
#include "tools/acfilter/render/Explanation.h"
#include "tools/acfilter/render/Printable.h"

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

std::string Percent(unsigned long long part, unsigned long long whole)
{
    constexpr unsigned long long perMille = 1000;
    const unsigned long long share = whole == 0 ? 0 : (part * perMille + whole / 2) / whole;
    return std::to_string(share / 10) + "." + std::to_string(share % 10);
}

std::string CountsTable(const OutcomeCounts& counts)
{
    std::string table = "<table><caption>Users by outcome</caption>\n<thead><tr><th scope=\"col\">Outcome</th>"
                        "<th scope=\"col\">Users</th><th scope=\"colgroup\" colspan=\"2\">Share</th>"
                        "<th scope=\"col\">Meaning</th></tr></thead>\n<tbody>\n";
    for (const analysis::Outcome outcome : allOutcomes) {
        const std::string name = NameOf(outcome);
        const std::string percent = Percent(counts.Of(outcome), counts.All());
        table += "<tr><th scope=\"row\" class=\"" + name + "\">" + name + "</th><td class=\"count\">" +
                 std::to_string(counts.Of(outcome)) + "</td><td class=\"count\">" + percent +
                 " %</td><td><svg class=\"bar " + name +
                 "\" viewBox=\"0 0 100 8\" preserveAspectRatio=\"none\" aria-hidden=\"true\"><rect width=\"" + percent +
                 "\" height=\"8\"/></svg></td><td>" + MeaningOf(outcome) + "</td></tr>\n";
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
        facts += "<dt>Configuration</dt><dd>" + Isolated(digest.file) + "<br>SHA-256 <code>" + digest.sha256 +
                 "</code></dd>\n";
    }
    return facts + "<dt>Users</dt><dd>" + std::to_string(counts.All()) + "</dd>\n<dt>Asked</dt><dd>" +
           (head.request.withoutLogin        ? std::string("by name, without a log-in")
            : head.request.ipAddress.empty() ? "by a log-in"
                                             : "by a log-in from " + Isolated(head.request.ipAddress)) +
           "</dd>\n</dl>\n";
}

std::string TableHead(const ReportHead& head)
{
    std::string table =
        "<p>A field restricts a user to the records with certain values; a cell tells how many these are" +
        std::string(head.showValues ? ", and which" : "") +
        ". <b>all</b>: the user holds the field's permission outright and is not restricted by it. <b>none</b>: no "
        "value is left, so every record is hidden. <b>not asked</b>: the answer was certain before. <b>restricts "
        "nothing</b>: there are values, but the field adds nothing to the filter.</p>\n"
        "<div class=\"wide\" id=\"table\" role=\"region\" aria-labelledby=\"name\" tabindex=\"0\">\n"
        "<table id=\"access\"><caption id=\"name\">Who sees what</caption>\n<thead><tr><th scope=\"col\">User</th>"
        "<th scope=\"col\">Group</th><th scope=\"col\">Outcome</th>";
    for (const std::string& field : head.fields) {
        table += "<th scope=\"col\">" + Isolated(field) + "</th>";
    }
    return table + "<th scope=\"col\">Filter</th></tr></thead>\n<tbody>\n";
}

class HtmlReport final : public ReportWriter {
public:
    HtmlReport(const ReportHead& reportHead, OutputFile& outputFile)
        : head(reportHead), output(outputFile), rows(outputFile.ScratchFolder())
    {
    }

    void Add(const AccessRow& row) override
    {
        std::string line = "<tr><th scope=\"row\">" + Isolated(row.user) + "</th><td>" +
                           Isolated(row.group.value_or("")) + "</td><td class=\"" + NameOf(row.outcome) + "\">" +
                           NameOf(row.outcome) + "</td>";
        for (const AccessCell& cell : row.cells) {
            line += CellOf(cell);
        }
        rows.Write(line +
                   (row.filter.empty() ? "<td class=\"alarm\">" + std::string(noRestriction)
                                       : "<td><code>" + Isolated(row.filter) + "</code>") +
                   "</td></tr>\n");
        counts.Add(row.outcome);
    }

    void Finish() override
    {
        output.Write(PageHead(head) + Facts(head, counts) + CountsTable(counts) + TableHead(head));
        rows.ForEachLine([&](const std::string& line) { output.Write(line + "\n"); });
        output.Write("</tbody></table>\n</div>\n<script>" + std::string(pageScript) + "</script>\n</body>\n</html>\n");
    }

private:
    std::string CellOf(const AccessCell& cell) const
    {
        if (cell.access == FieldAccess::notAsked) {
            return "<td class=\"not-asked\">not asked</td>";
        }
        std::string values;
        for (std::size_t n = 0; head.showValues && n < cell.values.size(); ++n) {
            values += (n == 0 ? "'" : ", '") + Isolated(cell.values[n]) + "'";
        }
        const std::string kind = cell.restrictsNothing ? "alarm" : NameOf(cell.access);
        return "<td class=\"" + kind + "\">" + CellText(cell, values) + "</td>";
    }

    const ReportHead& head;
    OutputFile& output;
    Spool rows;
    OutcomeCounts counts;
};

} // namespace

std::unique_ptr<ReportWriter> MakeHtmlReport(const ReportHead& head, OutputFile& output)
{
    return std::make_unique<HtmlReport>(head, output);
}

} // namespace secm::acfilter
