#include "tools/acfilter/render/TextLayout.h"

#include "tools/acfilter/render/Printable.h"

#include <fmt/format.h>

#include <algorithm>

namespace secm::acfilter {

namespace {

constexpr std::size_t shownBytes = 400;
constexpr std::size_t labelWidth = 14; // columns

} // namespace

std::string Quoted(const std::string& text)
{
    return "'" + Printable(text) + "'";
}

std::string NoRestriction()
{
    return fmt::format("({})", noRestriction);
}

std::string LabelledLine(std::size_t indent, std::string_view label, const std::string& content)
{
    std::string line(indent, ' ');
    line += label;
    const std::size_t used = indent + ColumnCount(label);
    line.append(used < labelWidth ? labelWidth - used : 1, ' ');
    return line + content + "\n";
}

std::string ShortList(std::size_t count, const std::function<std::string(std::size_t)>& item, bool isFull)
{
    const std::size_t shown = isFull ? count : std::min(count, shownItems);
    std::string list;
    for (std::size_t index = 0; index < shown; ++index) {
        list += (index == 0 ? "" : ", ") + item(index);
    }
    return shown < count ? fmt::format("{}, ... {} in all, --full shows them", list, count) : list;
}

std::string ShortText(const std::string& text, bool isFull)
{
    if (isFull || text.size() <= shownBytes) {
        return Printable(text);
    }
    std::size_t end = shownBytes;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xc0U) == 0x80) {
        --end; // not in the middle of a character
    }
    return fmt::format("{} ... {} bytes in all, --full shows them", Printable(text.substr(0, end)), text.size());
}

} // namespace secm::acfilter
