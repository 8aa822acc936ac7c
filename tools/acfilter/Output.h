#pragma once

#include <string>

/// Writes to standard output. Throws std::runtime_error when it cannot be written.
void Print(const std::string& text);

/// Writes out what was printed. Throws std::runtime_error when it cannot be written.
void FlushOutput();

bool OutputIsTerminal();

/// Whether colours are welcome on standard output: a terminal that can show them, and NO_COLOR not set.
bool OutputTakesColours();
