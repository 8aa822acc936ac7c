#include "tools/acfilter/render/Csv.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace secm::acfilter {

namespace {

// Removes the leading characters that a spreadsheet skips, or takes for the end of the cell before.
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

void AppendCell(std::string& line, const std::string& text)
{
    const std::string cell = MayBeFormula(text) ? "'" + text : text;
    if (cell.find_first_of(",\"\r\n") == std::string::npos) {
        line += cell;
        return;
    }
    line += '"';
    for (const char character : cell) {
        line.append(character == '"' ? 2 : 1, character);
    }
    line += '"';
}

} // namespace

std::string CsvLine(const std::vector<std::string>& cells)
{
    std::string line;
    for (const std::string& cell : cells) {
        line += &cell == &cells.front() ? "" : ",";
        AppendCell(line, cell);
    }
    return line += "\r\n";
}

} // namespace secm::acfilter
