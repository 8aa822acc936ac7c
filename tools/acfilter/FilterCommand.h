#pragma once

namespace CLI {
class App;
}

/// Adds `acfilter filter`, which prints the filter of each user asked for. It runs while `app` is parsed, and
/// throws std::exception when it fails.
void AddFilterCommand(CLI::App& app);
