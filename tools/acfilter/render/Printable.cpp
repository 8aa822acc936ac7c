#include "tools/acfilter/render/Printable.h"

#include <algorithm>

namespace secm::acfilter {

namespace {

// Names that differ by one of these look alike.
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view zeroWidthSpace = "\xE2\x80\x8B";

// Whether `second` may follow `first` in UTF-8.
bool IsSecond(unsigned first, unsigned second)
{
    const unsigned lowest = first == 0xe0 ? 0xa0 : first == 0xf0 ? 0x90 : 0x80;  // below: overlong forms
    const unsigned highest = first == 0xed ? 0x9f : first == 0xf4 ? 0x8f : 0xbf; // above: surrogates, or beyond Unicode
    return second >= lowest && second <= highest;
}

// The length in bytes of the UTF-8 character that `text` begins with; 0 when it begins with none.
std::size_t CharacterLength(std::string_view text)
{
    const auto byte = [text](std::size_t index) {
        return static_cast<unsigned>(static_cast<unsigned char>(text[index]));
    };
    const unsigned first = byte(0);
    if (first < 0x80) {
        return 1;
    }
    const std::size_t length = first >= 0xc2 && first <= 0xdf   ? 2
                               : first >= 0xe0 && first <= 0xef ? 3
                               : first >= 0xf0 && first <= 0xf4 ? 4
                                                                : 0;
    if (length == 0 || text.size() < length || !IsSecond(first, byte(1))) {
        return 0;
    }
    const std::string_view others = text.substr(2, length - 2);
    const auto continues = [](char other) { return (static_cast<unsigned char>(other) & 0xc0U) == 0x80; };
    return std::all_of(others.begin(), others.end(), continues) ? length : 0;
}

bool IsControl(std::string_view character)
{
    const auto byte = [character](std::size_t index) { return static_cast<unsigned char>(character[index]); };
    switch (character.size()) {
    case 1:
        return byte(0) < 0x20 || (byte(0) >= 0x7f && byte(0) < 0xa0);
    case 2:
        return (byte(0) == 0xc2 && byte(1) < 0xa0) || // a second set of control characters
               (byte(0) == 0xd8 && byte(1) == 0x9c);  // the one mark of direction that is that short
    case 3:
        return character == byteOrderMark || character == zeroWidthSpace ||
               (byte(0) == 0xe2 && ((byte(1) == 0x80 && (byte(2) == 0x8e || byte(2) == 0x8f)) ||
                                    (byte(1) == 0x80 && byte(2) >= 0xa8 && byte(2) <= 0xae) ||
                                    (byte(1) == 0x81 && byte(2) >= 0xa6 && byte(2) <= 0xa9)));
    default:
        return false;
    }
}

} // namespace

FirstCharacter FirstCharacterOf(std::string_view text)
{
    const std::size_t length = std::max<std::size_t>(CharacterLength(text), 1);
    return {length, IsControl(text.substr(0, length))};
}

std::string Printable(std::string_view text)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string printable;
    printable.reserve(text.size());
    while (!text.empty()) {
        const auto [length, isControl] = FirstCharacterOf(text);
        for (const char character : text.substr(0, length)) {
            const auto byte = static_cast<unsigned char>(character);
            if (isControl) {
                printable.append("\\x").append(1, digits[byte >> 4U]).append(1, digits[byte & 0xfU]);
            } else {
                printable += character;
            }
        }
        text.remove_prefix(length);
    }
    return printable;
}

} // namespace secm::acfilter
