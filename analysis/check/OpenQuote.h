// The quotes of most query languages: a text ends at the mark that opened it, and the mark twice stands for itself.
#pragma once

#include <string>
#include <string_view>

namespace secm::analysis {

/// The quote (', " or `) of the text that is still open at the end of `part`; empty when none is.
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
