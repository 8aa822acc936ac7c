#include "tools/acfilter/Json.h"

#include "tools/acfilter/Printable.h"

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
    std::string line;
    line.reserve(dumped.size() + 1);
    for (std::string_view rest = dumped; !rest.empty();) {
        const std::size_t length = ControlLength(rest);
        if (length == 0) {
            line += rest.front();
            rest.remove_prefix(1);
        } else {
            line += Escaped(rest.substr(0, length));
            rest.remove_prefix(length);
        }
    }
    return line + "\n";
}
