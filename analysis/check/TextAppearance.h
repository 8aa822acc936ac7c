// How a text looks to people: names that look alike are different names to the security manager.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace secm::analysis {

/// The same text for all texts that differ only by letter case, blanks at the ends, the number and kind of blanks
/// inside, invisible characters, the way in which accents are encoded, or Cyrillic and Greek letters that look like
/// Latin ones.
std::string Appearance(std::string_view text);

/// `text` without blanks at its ends and without invisible characters.
std::string Cleaned(std::string_view text);

/// Why `text` is not what it seems to be: "a blank at its start", "the invisible character U+200B", ...; empty when
/// nothing is wrong with it.
std::string HiddenFlaw(std::string_view text);

/// The parts of a text that seems to list several values between commas, semicolons or bars, without blanks at their
/// ends; empty when it does not.
std::vector<std::string> ListedValues(std::string_view text);

/// The one of `names` that looks like `name`, or else the nearest in spelling; empty when there is none.
std::string ProbablyMeant(const std::string& name, const std::vector<std::string>& names);

} // namespace secm::analysis
