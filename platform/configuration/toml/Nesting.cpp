// toml++ limits how deep arrays and inline tables nest (256), but not how many names a key joins with dots. It makes a
// table for each name, and destroys a table inside the destruction of the table around it, so a key of a hundred
// thousand names would exhaust the stack. Inline tables with long keys multiply that depth, so all levels are counted
// together: dots, brackets, commas and line ends outside of quoted texts and comments. The count is never too low. It
// is one too high where a number has a dot.
#include "platform/configuration/toml/Nesting.h"

#include <algorithm>
#include <string>
#include <vector>

namespace secm::platform {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// Of the quoted text at the front. A text without its end goes to the end of the line, or of `content` when it may hold
// several lines.
std::size_t TextLength(std::string_view content)
{
    const char quote = content.front();
    const bool isMultiLine = content.starts_with(std::string(3, quote));
    const std::string end(isMultiLine ? 3 : 1, quote);
    std::size_t at = end.size();
    for (; at < content.size() && !content.substr(at).starts_with(end); ++at) {
        if (content[at] == '\n' && !isMultiLine) {
            return at;
        }
        if (content[at] == '\\' && quote == '"') {
            ++at; // the escaped byte may be a quote
        }
    }
    // Up to two quotes directly before the three at the end belong to the text.
    const std::size_t behind = std::min(content.find_first_not_of(quote, at), content.size());
    return std::min(behind, at + (isMultiLine ? 5 : 1));
}

// How many names, inline tables and arrays are around the place that the scan has come to. The name of a table counts
// for two: for the entry that follows it too.
class Depth {
public:
    explicit Depth(std::string_view firstLine) { BeginLine(firstLine); }

    unsigned Get() const { return depth; }

    // Takes a byte outside of quoted texts and comments, and what follows it.
    void Take(char byte, std::string_view rest)
    {
        if (byte == '.') {
            ++depth;
        } else if (byte == ',') {
            depth = around.back() + 1;
        } else if (byte == '\n') {
            EndLine();
            BeginLine(rest);
        } else if ((byte == '[' || byte == '{') && !isHeader) {
            around.push_back(depth);
            ++depth;
        } else if ((byte == ']' || byte == '}') && !isHeader && around.size() > 1) {
            depth = around.back();
            around.pop_back();
        }
    }

private:
    void BeginLine(std::string_view line)
    {
        const std::size_t first = line.find_first_not_of(" \t");
        isHeader = around.size() == 1 && first != std::string_view::npos && line[first] == '[';
        depth = isHeader ? 2 : around.back() + 1;
    }

    void EndLine()
    {
        if (isHeader) {
            around.front() = depth - 1;
        }
    }

    std::vector<unsigned> around{0}; // the depths of the last table header and of the key before each open bracket
    unsigned depth = 1;
    bool isHeader = false; // the line is a table header
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
    Depth depth(content);
    for (std::size_t at = 0; at < content.size();) {
        const char byte = content[at];
        if (byte == '"' || byte == '\'') {
            at += TextLength(content.substr(at));
        } else if (byte == '#') {
            at = std::min(content.find('\n', at), content.size());
        } else {
            depth.Take(byte, content.substr(at + 1));
            if (depth.Get() > deepest) {
                return PositionBehind(content.substr(0, at));
            }
            ++at;
        }
    }
    return std::nullopt;
}

} // namespace secm::platform
