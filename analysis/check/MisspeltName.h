#pragma once

#include <string>

namespace secm::analysis {

/// Whether `name` was probably meant to be `right`: it differs only by letter case, blanks, `$` or characters that look
/// alike, or by a letter or two in one of its words. Names that differ by digits or in short words are not misspelt.
bool IsMisspeltName(const std::string& name, const std::string& right);

} // namespace secm::analysis
