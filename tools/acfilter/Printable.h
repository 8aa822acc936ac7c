#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// The length of the control character, or of the character that turns the direction of writing, that `text` begins
/// with in UTF-8; 0: it begins with none.
std::size_t ControlLength(std::string_view text);

/// `text` on one line and harmless to a terminal: each byte of a control character, and of a character that turns the
/// direction of writing, as \xNN. Other bytes stay as they are.
std::string Printable(std::string_view text);
