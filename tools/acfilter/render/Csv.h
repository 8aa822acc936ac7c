// Comma-separated values for spreadsheets.
#pragma once

#include <string>
#include <vector>

namespace secm::acfilter {

/// One line with its end (CR LF), as RFC 4180 defines it. A cell that a spreadsheet could take for a formula begins
/// with an apostrophe.
std::string CsvLine(const std::vector<std::string>& cells);

} // namespace secm::acfilter
