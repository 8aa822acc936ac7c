#pragma once

namespace secm::acfilter {

/// Opens /dev/null for each of the descriptors 0 to 2 that is closed. Otherwise a file that is opened later would get
/// its number, and what is written to standard output would go there. Reading such a standard input and writing such a
/// standard output fail; text for such a standard error is lost. Call it before anything is opened. False when
/// /dev/null cannot be opened.
bool HoldStandardDescriptors();

bool OutputIsTerminal();

/// Whether colours are welcome on standard output: a terminal that can show them, and NO_COLOR not set.
bool OutputTakesColours();

} // namespace secm::acfilter
