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
    bool isSearched; ///< Requests find rows by it, so it should have an index.
};

inline constexpr std::array<SecurityColumn, 9> textColumns = {{
    {"security_user", "user_name", true},
    {"security_user", "group_name", false},
    {"security_attribute", "user_name", true},
    {"security_attribute", "attribute_name", false},
    {"security_attribute", "attribute_value", false},
    {"security_permission", "grantee_type", false},
    {"security_permission", "grantee", true},
    {"security_permission", "permission_name", false},
    {"security_permission", "resource", false},
}};

/// The error message for a column that has another type than text or holds a value that is no text.
std::string NotText(const SecurityColumn& column);

/// Throws std::runtime_error when one of the columns is not of a text type, with the name of the first such column, or
/// when it is missing, with the database's own message.
void RequireTextColumns(soci::session& session);

} // namespace secm::platform
