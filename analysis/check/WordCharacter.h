#pragma once

namespace secm::analysis {

/// An ASCII letter, an ASCII digit or "_", whatever the locale.
constexpr bool IsWordCharacter(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '_';
}

} // namespace secm::analysis
