#include "tools/acfilter/render/Printable.h"

#include <unistr.h>
#include <uniwidth.h>

#include <algorithm>

namespace secm::acfilter {

namespace {

const std::uint8_t* BytesOf(std::string_view text)
{
    return reinterpret_cast<const std::uint8_t*>(text.data());
}

bool IsControl(std::uint32_t code)
{
    const auto isFrom = [code](std::uint32_t first, std::uint32_t last) { return code >= first && code <= last; };
    return code < 0x20 || isFrom(0x7f, 0x9f) || code == 0x61c || isFrom(0x200e, 0x200f) || isFrom(0x202a, 0x202e) ||
           isFrom(0x2066, 0x2069) ||         // direction
           isFrom(0x2028, 0x2029) ||         // ends of lines and paragraphs
           code == 0x200b || code == 0xfeff; // zero-width space, byte order mark: names that differ by it look alike
}

} // namespace

FirstCharacter FirstCharacterOf(std::string_view text)
{
    ucs4_t code = static_cast<unsigned char>(text.front());
    std::size_t length = 1;
    if (code >= 0x80) { // most are not
        ucs4_t decoded = 0;
        const int decodedLength = u8_mbtoucr(&decoded, BytesOf(text), text.size());
        if (decodedLength > 0) {
            code = decoded;
            length = static_cast<std::size_t>(decodedLength);
        }
    }
    return {length, code, IsControl(code)};
}

std::string Printable(std::string_view text)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string printable;
    printable.reserve(text.size());
    while (!text.empty()) {
        const FirstCharacter first = FirstCharacterOf(text);
        for (const char character : text.substr(0, first.length)) {
            const auto byte = static_cast<unsigned char>(character);
            if (first.isControl) {
                printable.append("\\x").append(1, digits[byte >> 4U]).append(1, digits[byte & 0xfU]);
            } else {
                printable += character;
            }
        }
        text.remove_prefix(first.length);
    }
    return printable;
}

std::size_t ColumnCount(std::string_view printable)
{
    return static_cast<std::size_t>(std::max(0, u8_width(BytesOf(printable), printable.size(), "UTF-8")));
}

} // namespace secm::acfilter
