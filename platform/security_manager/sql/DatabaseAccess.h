// Shared by all readers of a security database: the columns of a row, and the texts of errors.
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

/// What SOCI has of a session on PostgreSQL, which keeps it; null on SQLite.
soci::postgresql_session_backend* PostgreSqlOf(soci::session& session);

/// What went wrong, in one line: databases explain themselves in several.
std::string ReasonOf(const std::runtime_error& error);

/// Where an administrator finds a row: a user's by the name, a permission's by its position; some row, without both.
struct RowPlace {
    const char* table;
    std::string_view userName = {};
    std::optional<long long> position = {};

    std::string Text() const;
};

struct TextColumn {
    std::string text; ///< What the row before it left there, when this one is null.
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
