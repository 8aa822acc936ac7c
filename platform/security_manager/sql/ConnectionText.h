// What administrators write to name a security database, made safe for the library that takes it and for the log.
#pragma once

#include <string>

/// A longer limit would overflow the milliseconds in which the databases count.
inline constexpr unsigned longestTimeoutSeconds = 2'000'000;

struct DatabaseAddress {
    bool isPostgreSql; ///< Else SQLite.
    std::string settings;
};

/// Where the text leads to: SQLite files are only read and never created, and both databases keep the time limit
/// (seconds, at most the longest; 0: the database's own). Throws std::runtime_error, without quoting the text, when it
/// names no database.
DatabaseAddress DatabaseAddressOf(const std::string& connectionText, unsigned timeoutSeconds);

/// `text` without what `connectionText` keeps secret: the password, and all of a text that is not of the form
/// KEY=VALUE.
std::string WithoutSecrets(const std::string& connectionText, std::string text);
