// Texts from outside on their way to a terminal: what is printed, and how many columns it takes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace secm::acfilter {

/// The character that a text begins with.
struct FirstCharacter {
    std::size_t length; ///< In bytes; 1 when the text does not begin with a whole UTF-8 character.
    std::uint32_t code; ///< In Unicode; the byte's value when the text does not begin with a whole UTF-8 character.

    /// Whether it controls a terminal, changes the direction of writing, or is a byte order mark or a zero-width space,
    /// which nobody sees. True also for a byte from 0x80 to 0x9f that is no part of a UTF-8 character: terminals that
    /// do not read UTF-8 obey it.
    bool isControl;
};

/// `text` must not be empty.
FirstCharacter FirstCharacterOf(std::string_view text);

/// `text` on one line and harmless to a terminal: each byte of a control, as FirstCharacter defines it, is written as
/// \xNN. Other bytes stay as they are.
std::string Printable(std::string_view text);

/// How many columns of a terminal a text takes that Printable gave: none for a combining character, two for a wide one.
std::size_t ColumnCount(std::string_view printable);

} // namespace secm::acfilter
