// The form of all JSON lines.
#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace secm::acfilter {

using Json = nlohmann::ordered_json;

/// One object on one line. Bytes that are not UTF-8 become U+FFFD. Control characters are escaped, so that a terminal
/// does not obey them.
std::string JsonLine(const Json& object);

inline Json TextOrNull(const std::string& text)
{
    return text.empty() ? Json(nullptr) : Json(text);
}

} // namespace secm::acfilter
