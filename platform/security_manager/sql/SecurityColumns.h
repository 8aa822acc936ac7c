// The columns of the security tables that must hold text. Values of another type would be compared differently by
// log-in and by name, or never be found.
#pragma once

#include <array>
#include <string>

namespace soci {
class session;
}

namespace secm::platform {

struct SecurityColumn {
    const char* table;
    const char* name;
    /// Requests find rows by the column, so it should have an index: a condition on the columns that stand before it in
    /// that index, or "". Null: no request finds rows by it.
    const char* indexPrefix;
};

inline constexpr std::array<SecurityColumn, 9> textColumns = {{
    {"security_user", "user_name", ""},
    {"security_user", "group_name", nullptr},
    {"security_attribute", "user_name", ""},
    {"security_attribute", "attribute_name", nullptr},
    {"security_attribute", "attribute_value", nullptr},
    {"security_permission", "grantee_type", ""},
    {"security_permission", "grantee", "grantee_type IN ('user', 'group') AND "},
    {"security_permission", "permission_name", nullptr},
    {"security_permission", "resource", nullptr},
}};

/// The error message for a column that has another type than text or holds a value that is no text.
std::string NotText(const SecurityColumn& column);

/// Throws std::runtime_error when one of the columns is not of a text type, with the name of the first such column, or
/// when it is missing, with the database's own message.
void RequireTextColumns(soci::session& session);

} // namespace secm::platform
