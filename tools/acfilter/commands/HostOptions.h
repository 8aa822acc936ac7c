// The options that every command takes: where the configuration, the security database and the log are.
#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace secm::acfilter {

struct HostOptions {
    std::string configuration;
    std::string securityDatabase;
    std::string repository;
    unsigned timeoutSeconds = 0;
    std::optional<int> logLevel;
    std::optional<std::string> logFile;
};

/// What a command cannot do without; the configuration always.
struct HostNeeds {
    bool securityDatabase = true;
    bool repository = true;
};

/// Adds the options to `command`; `options` must live until it has been parsed.
void AddHostOptions(CLI::App& command, HostOptions& options, HostNeeds needs = {});

/// The message for std::bad_alloc. Put before it what was being done.
inline constexpr const char* memoryRanOut =
    "memory ran out; raise the limit (ulimit -v, or that of the service or container), or free some on this machine";

/// Hands the options on to the platform layers, by their environment variables, and makes sure that there is a
/// configuration. Call it before anything else of the platform. Throws std::runtime_error, and CFG_Error when the
/// configuration cannot be used.
void ApplyHostOptions(const HostOptions& options);

/// Makes sure that the configuration in force, which `options` name, has the repository: the module would go on with
/// empty settings. Throws std::runtime_error.
void RequireRepository(const HostOptions& options);

} // namespace secm::acfilter
