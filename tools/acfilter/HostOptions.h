// The options that every command takes: where the configuration, the security database and the log are.
#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}

struct HostOptions {
    std::string configuration;
    std::string securityDatabase;
    std::string repository;
    unsigned timeoutSeconds = 0;
    std::optional<int> logLevel;
    std::optional<std::string> logFile;
};

/// Adds the options to `command`; `options` must live until it has been parsed.
void AddHostOptions(CLI::App& command, HostOptions& options);

/// Hands the options on to the platform layers, by their environment variables, and makes sure that the
/// configuration has the repository: the module would go on with empty settings. Call it before anything else
/// of the platform. Throws std::runtime_error, and CFG_Error when the configuration cannot be used.
void ApplyHostOptions(const HostOptions& options);
