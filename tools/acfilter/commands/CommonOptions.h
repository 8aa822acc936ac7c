// The options that several commands share, as the command line filled them in.
#pragma once

#include <optional>
#include <string>
#include <vector>

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

enum class Format { text, csv, json, html, junit };

/// How users are asked for, and how the answers are written.
struct RequestOptions {
    std::string ipAddress;
    bool withoutLogin = false;
    Format format = Format::text;
};

/// Rows that filters are tried on.
struct DataOptions {
    bool IsGiven() const { return !connection.empty(); }

    std::string connection; ///< As in analysis::DataPlace; empty: filters are not tried.
    std::string table;
    std::string key;
    std::optional<std::string> record; ///< The key of one row.
};

/// Changes of attributes and grants that are tried.
struct ChangeOptions {
    bool IsEmpty() const { return attributes.empty() && grants.empty() && revocations.empty(); }

    std::vector<std::string> attributes;  ///< NAME=VALUE
    std::vector<std::string> grants;      ///< NAME:VALUE or NAME:VALUE:RESOURCE
    std::vector<std::string> revocations; ///< NAME or NAME:RESOURCE
};

} // namespace secm::acfilter
