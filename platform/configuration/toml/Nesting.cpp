// The parser makes and destroys its tables one inside the other, so a key of a hundred thousand names would exhaust the
// stack before anybody could refuse it. Only what opens and ends a level is looked at here: dots, brackets, commas and
// line ends outside of texts and comments, which are passed over as the parser passes over them up to its first error.
// The count is never too low; it is one too high where a number has a dot.
#include "platform/configuration/toml/Nesting.h"

#include <algorithm>
#include <string>
#include <vector>

namespace configuration {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// Of the quoted text at the front. One that is forgotten to be ended goes to the end of its line, or of everything.
std::size_t TextLength(std::string_view content)
{
    const char quote = content.front();
    const std::string threeQuotes(3, quote);
    const bool isMultiLine = content.starts_with(threeQuotes);
    std::size_t at = isMultiLine ? 3 : 1;
    while (at < content.size()) {
        if (content[at] == '\\' && quote == '"') {
            at += 2; // whatever is escaped, a quote too
        } else if (isMultiLine && content.substr(at).starts_with(threeQuotes)) {
            // Up to two quotes directly before the end belong to the text.
            const std::size_t end = std::min(content.find_first_not_of(quote, at), content.size());
            return std::min(end, at + 5);
        } else if (!isMultiLine && content[at] == quote) {
            return at + 1;
        } else if (!isMultiLine && content[at] == '\n') {
            return at;
        } else {
            ++at;
        }
    }
    return content.size();
}

// Whether it may change the depth, or begins what is passed over.
bool IsMark(char byte)
{
    switch (byte) {
    case '[':
    case ']':
    case '{':
    case '}':
    case '.':
    case ',':
    case '\n':
    case '"':
    case '\'':
    case '#':
        return true;
    default:
        return false;
    }
}

// Of what stands at the front and is taken as one: a text, a comment up to its line's end, a mark, a blank, or what
// stands up to the next mark.
std::size_t PieceLength(std::string_view content)
{
    switch (content.front()) {
    case '"':
    case '\'':
        return TextLength(content);
    case '#':
        return std::min(content.find('\n'), content.size());
    case ' ':
    case '\t':
        return 1;
    default:
        if (IsMark(content.front())) {
            return 1;
        }
        return static_cast<std::size_t>(std::find_if(content.begin() + 1, content.end(), IsMark) - content.begin());
    }
}

// How many names, inline tables and arrays stand around the place that the scan has come to; the name of a table counts
// for two, for what stands in it.
class Depth {
public:
    unsigned Take(char piece)
    {
        switch (piece) {
        case '[':
        case '{':
            Open(piece);
            break;
        case ']':
        case '}':
            Close();
            break;
        case '.':
            ++depth;
            break;
        case ',':
            BeginEntry();
            break;
        case '\n':
            EndLine();
            break;
        default:
            break;
        }
        isLineStart = piece == '\n' || (isLineStart && (piece == ' ' || piece == '\t'));
        return depth;
    }

private:
    void Open(char bracket)
    {
        if (isLineStart && bracket == '[' && enclosing.size() == 1) {
            isHeader = true;
            depth = 2;
        } else if (!isHeader) {
            enclosing.push_back(depth);
            BeginEntry();
        }
    }

    void Close()
    {
        if (!isHeader && enclosing.size() > 1) {
            depth = enclosing.back();
            enclosing.pop_back();
        }
    }

    void EndLine()
    {
        if (isHeader) {
            isHeader = false;
            enclosing.front() = depth - 1;
        }
        BeginEntry();
    }

    void BeginEntry() { depth = enclosing.back() + 1; }

    unsigned depth = 1;
    std::vector<unsigned> enclosing{0}; // the depth of the table header in force, then of each open bracket's key
    bool isHeader = false;
    bool isLineStart = true;
};

} // namespace

TextPosition PositionBehind(std::string_view content)
{
    TextPosition position;
    for (const char byte : content) {
        const bool continuesCharacter = (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
        if (byte == '\n') {
            ++position.line;
            position.column = 1;
        } else if (!continuesCharacter) {
            ++position.column;
        }
    }
    return position;
}

std::optional<TextPosition> FindTooDeep(std::string_view content, unsigned deepest)
{
    if (content.starts_with(byteOrderMark)) {
        content.remove_prefix(byteOrderMark.size());
    }
    Depth depth;
    for (std::size_t at = 0; at < content.size(); at += PieceLength(content.substr(at))) {
        if (depth.Take(content[at]) > deepest) {
            return PositionBehind(content.substr(0, at));
        }
    }
    return std::nullopt;
}

} // namespace configuration
