#include "tools/acfilter/render/Json.h"

#include "tools/acfilter/render/Printable.h"

#include <fmt/format.h>

#include <iterator>
#include <string_view>

namespace secm::acfilter {

std::string JsonLine(const Json& object)
{
    // The library escapes only what JSON itself forbids. Its text is UTF-8, and no control is beyond U+FFFF.
    const std::string dumped = object.dump(-1, ' ', false, Json::error_handler_t::replace);
    const std::string_view text = dumped;
    std::string line;
    line.reserve(text.size() + 1);
    for (std::size_t at = 0; at < text.size();) {
        const bool mayControl = static_cast<unsigned char>(text[at]) >= 0x7f; // most do not
        const FirstCharacter first = mayControl ? FirstCharacterOf(text.substr(at)) : FirstCharacter{1, 0, false};
        if (first.isControl) {
            fmt::format_to(std::back_inserter(line), "\\u{:04x}", first.code);
        } else {
            line += text.substr(at, first.length);
        }
        at += first.length;
    }
    return line += '\n';
}

} // namespace secm::acfilter
