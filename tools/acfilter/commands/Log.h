// Sets up the log of the module and the platform layers.
#pragma once

#include "tools/acfilter/commands/CommonOptions.h"

#include <optional>
#include <string>

namespace secm::acfilter {

/// The file that --log-file names, else `TMR_LOG_FILE`. Empty: the log goes to standard error.
std::string LogPath(const HostOptions& options);

/// Sets the level and the file of the log. The options take precedence over the environment, and that over
/// `defaultLevel`. With a file, each SIGHUP opens it again. Call it once, before anything else of the platform. Throws
/// std::runtime_error when the options ask for what the log in use cannot do.
void StartLog(const HostOptions& options, std::optional<int> defaultLevel = std::nullopt);

} // namespace secm::acfilter
