#pragma once

/// Opens those of the descriptors 0 to 2 that are closed, so that nothing that is opened later gets their numbers, and
/// with them what is meant for standard output. Reading standard input and writing standard output fail then; what goes
/// to standard error is lost. Call it before anything is opened. False when a descriptor cannot be opened.
bool HoldStandardDescriptors();

bool OutputIsTerminal();

/// Whether colours are welcome on standard output: a terminal that can show them, and NO_COLOR not set.
bool OutputTakesColours();
