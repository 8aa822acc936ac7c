// The parser notices a mistake where it cannot go on, which is often behind the mistake. So quoted texts are searched
// again from the beginning of the file.
#include "platform/configuration/toml/SyntaxAdvice.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace secm::platform {
namespace {

constexpr std::string_view quotes = "\"'";

bool IsUtf16(std::string_view content)
{
    return content.starts_with("\xFF\xFE") || content.starts_with("\xFE\xFF") ||
           content.substr(0, 4).find('\0') != std::string_view::npos;
}

// A quoted text that does not end: where it begins, and its quotes.
struct OpenText {
    std::size_t at;
    std::string quotes;
};

std::optional<OpenText> FindOpenText(std::string_view content)
{
    for (std::size_t at = 0; at < content.size(); ++at) {
        if (content[at] == '#') {
            at = std::min(content.find('\n', at), content.size());
            continue;
        }
        if (quotes.find(content[at]) == std::string_view::npos) {
            continue;
        }
        const bool isMultiLine = content.substr(at).starts_with(std::string(3, content[at]));
        const std::string mark(isMultiLine ? 3 : 1, content[at]);
        std::size_t end = at + mark.size();
        while (end < content.size() && !content.substr(end).starts_with(mark) &&
               (isMultiLine || content[end] != '\n')) {
            end += content[end] == '\\' && mark.front() == '"' ? 2U : 1U;
        }
        if (end >= content.size() || content[end] == '\n') {
            return OpenText{at, mark};
        }
        end += mark.size();
        while (isMultiLine && end < content.size() && content[end] == mark.front()) {
            ++end; // up to two quotes directly before the end belong to the text
        }
        at = end - 1;
    }
    return std::nullopt;
}

// The line with number `number`, which counts from 1.
std::string_view LineOf(std::string_view content, unsigned number)
{
    while (--number > 0 && content.find('\n') != std::string_view::npos) {
        content.remove_prefix(content.find('\n') + 1);
    }
    std::string_view line = content.substr(0, content.find('\n'));
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    return line;
}

// The part of a line that names its table or its key.
std::string_view NameOf(std::string_view line)
{
    const std::string_view name = line.substr(0, line.find(line.starts_with('[') ? ']' : '='));
    return name.substr(0, name.find_last_not_of(" \t") + 1);
}

// Where the table or the key of the line was written before, in words; empty when that cannot be told.
std::string EarlierLine(std::string_view content, unsigned number)
{
    const std::string_view name = NameOf(LineOf(content, number));
    std::string earlier;
    unsigned current = 0;
    for (std::string_view rest = content; ++current < number && !rest.empty();) {
        const std::string_view line = LineOf(rest, 1);
        if (!name.starts_with('[') && line.starts_with('[')) {
            earlier.clear(); // that key belongs to another table
        } else if (NameOf(line) == name) {
            earlier = fmt::format(" in line {}", current);
        }
        rest.remove_prefix(std::min(rest.find('\n'), rest.size() - 1) + 1);
    }
    return earlier;
}

// A quote of a word processor in the line; empty when there is none.
std::string_view TypographicQuoteIn(std::string_view line)
{
    for (const std::string_view quote : {"\u2018", "\u2019", "\u201A", "\u201C", "\u201D", "\u201E"}) {
        if (line.find(quote) != std::string_view::npos) {
            return quote;
        }
    }
    return "";
}

std::string RemedyFor(std::string_view content, unsigned line, std::string_view description)
{
    const auto says = [&](std::string_view words) { return description.find(words) != std::string_view::npos; };
    if (const std::string_view quote = TypographicQuoteIn(LineOf(content, line)); !quote.empty() && !says("escape")) {
        return fmt::format("the line has the typographic quote {}, as word processors write it; write \" or '", quote);
    }
    if (says("cannot redefine")) {
        return fmt::format("it is already there{}; write it once", EarlierLine(content, line));
    }
    struct Remedy {
        std::string_view words; // of the parser
        const char* remedy;
    };
    constexpr std::array<Remedy, 6> remedies = {
        {{"utf-8", "save the file in the encoding UTF-8"},
         {"escape", R"(in a text between " a backslash begins an escape; write \\, or put the text between ')"},
         {"could not determine value type", "write a text between quotes, or a whole number without them"},
         {"table header", "write a table as [NAME.NAME]; a name with other characters than A-Z, a-z, 0-9, _ and - "
                          "stands between quotes"},
         {"expected '='", "write KEY = VALUE; a key with other characters than A-Z, a-z, 0-9, _ and - stands between "
                          "quotes"},
         {"expected a comment or whitespace", "the value ended before: a text with \" in it stands between ', or has "
                                              "\\\" in it; a note begins with #"}}};
    const auto* const found =
        std::find_if(remedies.begin(), remedies.end(), [&](const Remedy& each) { return says(each.words); });
    return found != remedies.end() ? found->remedy : "";
}

} // namespace

SyntaxAdvice AdviceOn(std::string_view content, TextPosition position, std::string_view description)
{
    if (IsUtf16(content)) {
        return {TextPosition{}, "the file is in the encoding UTF-16", "save it in the encoding UTF-8"};
    }
    if (const auto open = FindOpenText(content)) {
        const TextPosition start = PositionBehind(content.substr(0, open->at));
        const bool isNoticedBehind =
            start.line == position.line ? start.column < position.column : start.line < position.line;
        if (isNoticedBehind && (open->quotes.size() == 3 || start.line == position.line)) {
            return {start,
                    fmt::format("the text that begins here with {} does not end{}", open->quotes,
                                open->quotes.size() == 1 ? " in its line" : ""),
                    fmt::format("write {} behind it", open->quotes)};
        }
    }
    return {std::nullopt, "", RemedyFor(content, position.line, description)};
}

} // namespace secm::platform
