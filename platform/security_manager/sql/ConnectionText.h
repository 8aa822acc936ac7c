// What administrators write to name a security database, taken apart before any database library sees it.
#pragma once

#include <string>
#include <string_view>
#include <variant>

/// A longer limit would overflow the milliseconds in which the databases count.
inline constexpr unsigned longestTimeoutSeconds = 2'000'000;

struct SqliteAddress {
    std::string file;            ///< As it was written, never empty.
    unsigned timeoutSeconds = 0; ///< How long to wait for a lock; 0: not at all.
    bool sharesCache = false;
};

struct PostgreSqlAddress {
    std::string settings; ///< KEY=VALUE..., which the client library can parse.
};

using DatabaseAddress = std::variant<SqliteAddress, PostgreSqlAddress>;

/// Where the text leads to, with the time limit (seconds, at most the longest; 0: the database's own). Throws
/// std::runtime_error, which quotes nothing that could be secret, when the text names no database.
DatabaseAddress DatabaseAddressOf(const std::string& connectionText, unsigned timeoutSeconds);

/// The text as it may be shown: the values of keys that are known to be harmless, and *** for all else; nothing but the
/// scheme when the text cannot be taken apart.
std::string ShownConnectionText(const std::string& connectionText);

/// Whether another machine could answer as the PostgreSQL server at `address` (a number; empty: a local socket) with
/// this `sslMode`: on the way to a server that is not local, unless its certificate and name are verified.
bool CanBeImpersonated(std::string_view address, std::string_view sslMode);
