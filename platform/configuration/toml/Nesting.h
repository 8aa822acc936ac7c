// How deep a TOML text nests, asked before it is parsed.
#pragma once

#include <optional>
#include <string_view>

namespace configuration {

/// In a text; both count from 1, columns in characters.
struct TextPosition {
    unsigned line = 1;
    unsigned column = 1;
};

/// The position right after the last byte of `content`.
TextPosition PositionBehind(std::string_view content);

/// Where `content` first nests more than `deepest` names, inline tables and arrays in brackets inside one another; none
/// when it nowhere does. (An array of tables is a name like others, and twice as deep at most.) A text that is no TOML
/// is looked at likewise, up to its end.
std::optional<TextPosition> FindTooDeep(std::string_view content, unsigned deepest);

} // namespace configuration
