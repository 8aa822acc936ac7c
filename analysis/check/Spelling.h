// What somebody may have meant to write.
#pragma once

#include <cctype>
#include <string>
#include <string_view>
#include <vector>

namespace secm::analysis {

/// A letter or digit of ASCII, or "_".
inline bool IsWordCharacter(char character)
{
    return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_';
}

/// How many characters have to be changed, added, left out or swapped with the next to make one text of the other;
/// upper and lower case do not count.
std::size_t Distance(std::string_view left, std::string_view right);

/// The one of `names` that `name` was probably meant to be; empty when none is near.
std::string Nearest(const std::string& name, const std::vector<std::string>& names);

/// A remedy: `otherwise`, behind "did you mean 'NAME'? else " when a name is near.
std::string DidYouMean(const std::string& name, const std::vector<std::string>& names, const std::string& otherwise);

} // namespace secm::analysis
