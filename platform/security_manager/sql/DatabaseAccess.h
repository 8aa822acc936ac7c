// What all readers of a security database share: the columns of a row, the texts of errors, and the log.
#pragma once

#include "platform/security_manager/PermissionBase.h"

#include <soci/soci.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace soci {
struct postgresql_session_backend;
}

namespace secm::platform {

/// The number of the security database's readers in the log, and the number of their log.
inline constexpr int databaseLogModule = 198;
inline constexpr int databaseLogNumber = 1;

/// SOCI's state of a session on PostgreSQL, owned by the session; null on SQLite.
soci::postgresql_session_backend* PostgreSqlOf(soci::session& session);

/// The text of the error in one line. Messages of databases have several.
std::string ReasonOf(const std::runtime_error& error);

/// Logs at level 3, as coming from `function`, that the database "failed" or "cannot be used", and the reason. The
/// connection text is shown without secrets.
void LogFailure(const char* function, const std::string& connectionText, const char* what, const std::string& reason);

/// Names a row in messages: by the user name, else by the position, else only by its table.
struct RowPlace {
    const char* table;
    std::string_view userName = {};
    std::optional<long long> position = {};

    std::string Text() const;
};

struct TextColumn {
    std::string text; ///< Of an earlier row when `indicator` is null.
    soci::indicator indicator = soci::i_null;

    /// The text. Throws std::runtime_error, which names `place`, when it is null or holds a NUL.
    const std::string& At(const RowPlace& place) const;
};

/// The columns of security_permission that a PermissionRow takes, in its order.
extern const char* const permissionColumns;

struct PermissionRow {
    long long position = 0;
    TextColumn name;
    TextColumn resource;
    long long value = 0;
    int isConditional = 0;

    /// Binds the columns of one statement to this row, which must outlive it.
    void Bind(soci::statement& statement);
    /// Throws std::runtime_error, which names the position, when the row holds no permission.
    PermissionBase Permission() const;
};

} // namespace secm::platform
