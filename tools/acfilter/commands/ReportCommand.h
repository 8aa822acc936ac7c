#pragma once

namespace CLI {
class App;
}

namespace secm::acfilter {

/// Adds `acfilter report`, which tells who sees what, a row a user. It runs while `app` is parsed, and throws
/// std::exception when it fails.
void AddReportCommand(CLI::App& app);

} // namespace secm::acfilter
