// Quotes as most query languages have them: what opens a text closes it, and twice is one inside.
#pragma once

#include <string>
#include <string_view>

namespace secm::analysis {

/// The quote (', " or `) of the text that is not closed at the end of `part`; empty: there is none.
inline std::string OpenQuote(std::string_view part)
{
    std::string open;
    for (const char character : part) {
        if (open.empty() && std::string_view("'\"`").find(character) != std::string_view::npos) {
            open = character;
        } else if (!open.empty() && character == open.front()) {
            open.clear();
        }
    }
    return open;
}

} // namespace secm::analysis
