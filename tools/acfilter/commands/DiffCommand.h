#pragma once

#include "tools/acfilter/commands/ExitStatus.h"

namespace CLI {
class App;
}

namespace secm::acfilter {

/// Adds `acfilter diff`, which tells who would see more or less under another configuration or other permissions. It
/// runs while `app` is parsed, sets `status` when somebody would see more, and throws std::exception when it fails.
void AddDiffCommand(CLI::App& app, ExitStatus& status);

} // namespace secm::acfilter
