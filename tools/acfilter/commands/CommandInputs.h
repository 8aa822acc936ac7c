// Keeps the answer of a command from replacing files that the command reads or logs to.
#pragma once

#include "platform/configuration/CFG_Candidate.h"
#include "tools/acfilter/commands/CommonOptions.h"

#include <optional>
#include <string>

namespace secm::acfilter {

/// Throws std::runtime_error when `output` is
/// - a file of the configuration, or a new file that would be read as one;
/// - `usersFrom`, or the log;
/// - any file that this process has open, such as standard output or the security database, or a file that SQLite keeps
///   beside it.
/// `configuration` is what was read from the path that `host` names; null when the
/// configuration library cannot read candidates. Call it after connecting.
void RequireNoInput(const std::string& output, const HostOptions& host, const CFG_Candidate* configuration,
                    const std::optional<std::string>& usersFrom);

} // namespace secm::acfilter
