#pragma once

namespace CLI {
class App;
}

namespace secm::acfilter {

/// Adds `acfilter explain`, which tells how one user's filter comes about, also as it would be after a change. It runs
/// while `app` is parsed, and throws std::exception when it fails.
void AddExplainCommand(CLI::App& app);

} // namespace secm::acfilter
