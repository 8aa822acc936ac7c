#pragma once

#include <string>
#include <string_view>

/// `text` on one line and harmless to a terminal: each byte of a control character, and of a character that turns the
/// direction of writing, as \xNN. Other bytes stay as they are.
std::string Printable(std::string_view text);
