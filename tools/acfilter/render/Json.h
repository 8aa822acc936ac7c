// How all commands write JSON.
#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace secm::acfilter {

using Json = nlohmann::ordered_json;

/// One object on one line; bytes that are not UTF-8 become U+FFFD, and nothing in it controls a terminal.
std::string JsonLine(const Json& object);

inline Json TextOrNull(const std::string& text)
{
    return text.empty() ? Json(nullptr) : Json(text);
}

} // namespace secm::acfilter
