#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace secm::acfilter {

/// The character that a text begins with.
struct FirstCharacter {
    std::size_t length; ///< In bytes; 1 when the text does not begin with a whole UTF-8 character.

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

} // namespace secm::acfilter
