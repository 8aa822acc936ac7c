// The options of all commands.
#pragma once

#include "tools/acfilter/commands/ExitStatus.h"

namespace secm::acfilter {

/// Parses the command line and runs the command that it names, or prints what --help or --version asks for. An unknown
/// command is reported on standard error, with wrongCommandLine. Throws UsageError when the options are wrong, and what
/// the command throws.
ExitStatus RunCommandLine(int argc, const char* const* argv);

} // namespace secm::acfilter
