// Keeps the answer of a command from replacing files that the command reads or logs to.
#pragma once

#include "tools/acfilter/commands/HostOptions.h"

namespace secm::acfilter {

/// Throws std::runtime_error when `output` is
/// - a file of the configuration, or a new file that would be read as one;
/// - `usersFrom`, or the log;
/// - any file that this process has open, such as standard output or the security database, or a file that SQLite keeps
///   beside it.
/// Call it after connecting.
void RequireNoInput(const std::string& output, const HostOptions& host, const std::optional<std::string>& usersFrom);

} // namespace secm::acfilter
