// The options that several commands share, as the command line filled them in.
#pragma once

#include <optional>
#include <string>

namespace secm::acfilter {

/// Where the configuration, the security database and the log are.
struct HostOptions {
    std::string configuration;
    std::string securityDatabase;
    std::string repository;
    unsigned timeoutSeconds = 0;
    std::optional<int> logLevel;
    std::optional<std::string> logFile;
};

enum class Format { text, csv, json, html };

/// How users are asked for, and how the answers are written.
struct RequestOptions {
    std::string ipAddress;
    bool withoutLogin = false;
    Format format = Format::text;
};

} // namespace secm::acfilter
