// Measures how deep a TOML text nests, before it is parsed.
#pragma once

#include <optional>
#include <string_view>

namespace secm::platform {

/// A position in a text; both count from 1, columns in characters.
struct TextPosition {
    unsigned line = 1;
    unsigned column = 1;
};

/// The position right after the last byte of `content`.
TextPosition PositionBehind(std::string_view content);

/// Where `content` first nests more than `deepest` names, inline tables and arrays inside one another; no value when it
/// does so nowhere. The name of an array of tables counts once. `content` need not be valid TOML.
std::optional<TextPosition> FindTooDeep(std::string_view content, unsigned deepest);

} // namespace secm::platform
