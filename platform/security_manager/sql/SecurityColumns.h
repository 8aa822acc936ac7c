// The columns of the security tables that hold text. A name of another type would be compared in another way on one
// road than on the other, or found by nobody.
#pragma once

#include <array>
#include <string>

namespace soci {
class session;
}

struct SecurityColumn {
    const char* table;
    const char* name;
    bool isSearched; ///< Whether rows are found by it, for which an index is expected.
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

/// What is wrong with a column that holds, or may hold, something else than text, and the remedy.
std::string NotText(const SecurityColumn& column);

/// Makes sure that each of the columns is of a type whose values are texts and compared as such. Throws
/// std::runtime_error, which names the first that is not, and what the database says when there is no such column.
void RequireTextColumns(soci::session& session);
