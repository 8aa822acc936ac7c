#pragma once

#include "tools/acfilter/commands/ExitStatus.h"

namespace CLI {
class App;
}

namespace secm::acfilter {

/// Adds `acfilter check`, which prints what an administrator would regret about a configuration. It runs while `app` is
/// parsed, sets `status` when there is an error in the configuration, and throws std::exception when it fails.
void AddCheckCommand(CLI::App& app, ExitStatus& status);

} // namespace secm::acfilter
