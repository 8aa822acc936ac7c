#include "tools/acfilter/render/Json.h"

#include "tools/acfilter/render/Printable.h"

namespace secm::acfilter {

namespace {

// Of up to three bytes in UTF-8, as JSON writes it in a text.
std::string Escaped(std::string_view character)
{
    unsigned code = static_cast<unsigned char>(character.front());
    if (character.size() > 1) {
        code &= character.size() == 2 ? 0x1fU : 0x0fU;
    }
    for (const char next : character.substr(1)) {
        code = code << 6U | (static_cast<unsigned char>(next) & 0x3fU);
    }
    constexpr std::string_view digits = "0123456789abcdef";
    std::string escaped = "\\u";
    for (const unsigned shift : {12U, 8U, 4U, 0U}) {
        escaped += digits[code >> shift & 0xfU];
    }
    return escaped;
}

} // namespace

std::string JsonLine(const Json& object)
{
    // The library escapes only what JSON itself forbids.
    const std::string dumped = object.dump(-1, ' ', false, Json::error_handler_t::replace);
    const std::string_view text = dumped;
    std::string line;
    line.reserve(text.size() + 1);
    for (std::size_t at = 0; at < text.size();) {
        const bool mayControl = static_cast<unsigned char>(text[at]) >= 0x7f; // most do not
        const FirstCharacter first = mayControl ? FirstCharacterOf(text.substr(at)) : FirstCharacter{1, false};
        const std::string_view character = text.substr(at, first.length);
        if (first.isControl) {
            line += Escaped(character);
        } else {
            line += character;
        }
        at += first.length;
    }
    return line += '\n';
}

} // namespace secm::acfilter
