// Parses connection texts, which administrators write, before any database library sees them.
#pragma once

#include <string>
#include <string_view>
#include <variant>

namespace secm::platform {

/// A longer limit would overflow the databases' counters of milliseconds.
inline constexpr unsigned longestTimeoutSeconds = 2'000'000;

struct SqliteAddress {
    std::string file;            ///< As written; never empty.
    unsigned timeoutSeconds = 0; ///< For how long a statement waits for a lock; 0: it does not wait.
    bool sharesCache = false;
};

struct PostgreSqlAddress {
    std::string settings; ///< KEY=VALUE ..., checked by the client library's parser.
};

using DatabaseAddress = std::variant<SqliteAddress, PostgreSqlAddress>;

/// The database that the text names. `timeoutSeconds` is at most longestTimeoutSeconds; 0: the database's own limit.
/// Throws std::runtime_error, whose text quotes nothing that could be secret, when the text names no database.
DatabaseAddress DatabaseAddressOf(const std::string& connectionText, unsigned timeoutSeconds);

/// The text without secrets, for messages: *** stands for the values of all keys that are not known to be harmless.
/// Only the scheme is shown when the text cannot be parsed.
std::string ShownConnectionText(const std::string& connectionText);

/// Whether another machine could pretend to be the PostgreSQL server at `address` (numeric; empty: a local socket):
/// true for a server on another machine, unless `sslMode` verifies its certificate and name.
bool CanBeImpersonated(std::string_view address, std::string_view sslMode);

} // namespace secm::platform
