#pragma once

namespace CLI {
class App;
}

namespace secm::acfilter {

/// Adds `acfilter filter`, which prints the filter of each user asked for. It runs while `app` is parsed, and
/// throws std::exception when it fails.
void AddFilterCommand(CLI::App& app);

} // namespace secm::acfilter
