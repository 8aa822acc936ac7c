#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// The character that a text begins with.
struct FirstCharacter {
    std::size_t length; ///< In bytes; 1 where the text does not begin with a whole character of UTF-8.

    /// Whether it controls a terminal, or turns the direction of writing. A byte from 0x80 to 0x9f that is not part of
    /// a character does: terminals that do not read UTF-8 obey it.
    bool isControl;
};

/// `text` is not empty.
FirstCharacter FirstCharacterOf(std::string_view text);

/// `text` on one line and harmless to a terminal: each byte of what FirstCharacter calls a control as \xNN. Other bytes
/// stay as they are.
std::string Printable(std::string_view text);
