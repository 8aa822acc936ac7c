#pragma once

#include "tools/acfilter/ExitStatus.h"

namespace CLI {
class App;
}

/// Adds `acfilter check`, which prints what an administrator would regret about a configuration. It runs while `app` is
/// parsed, sets `status` when there is an error in the configuration, and throws std::exception when it fails.
void AddCheckCommand(CLI::App& app, ExitStatus& status);
