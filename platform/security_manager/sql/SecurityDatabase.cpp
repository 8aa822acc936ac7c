// Every statement gives rows of the same columns (section, position, name, text, value, is_conditional). So a log-in is
// one statement, which sees one snapshot: the user, then the attributes, then the permissions.
#include "platform/security_manager/sql/SecurityDatabase.h"

#include "platform/database/ConnectionText.h"
#include "platform/security_manager/SECM_Constants.h"
#include "platform/security_manager/sql/AllowedTexts.h"
#include "platform/security_manager/sql/DatabaseAccess.h"
#include "platform/security_manager/sql/DatabaseConnection.h"
#include "platform/security_manager/sql/GrantedPermissions.h"

#include <fmt/format.h>

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace secm::platform {
namespace {

enum Section : long long { userSection = 0, attributeSection = 1, permissionSection = 2 };

// Conditions that compare names twice: by the column's own collation, which can use an index, and byte for byte.
class NameComparison {
public:
    explicit NameComparison(const char* bytewiseCollation) : collation(bytewiseCollation) {}

    std::string Equal(const std::string& column, const std::string& sought) const
    {
        return column + " = " + sought + " AND " + column + " COLLATE " + collation + " = " + sought;
    }

    // An empty group name is no group, whatever is granted to it.
    std::string GrantedToUser(const std::string& user) const { return GrantedTo("'user'", user); }
    std::string GrantedToGroup(const std::string& group) const
    {
        return GrantedTo("'group'", group) + " AND " + group + " <> ''";
    }

private:
    std::string GrantedTo(const char* granteeType, const std::string& grantee) const
    {
        return Equal("security_permission.grantee_type", granteeType) + " AND " +
               Equal("security_permission.grantee", grantee);
    }

    const char* collation;
};

std::string PermissionRows(const char* tables, const std::string& condition)
{
    return std::string("SELECT 2, ") + permissionColumns + " FROM " + tables + " WHERE " + condition;
}

// The user's row has the value -1 when the group name is no text: nothing would be granted to such a group.
std::string UserWithPermissionsRows(const NameComparison& names)
{
    const std::string isUser = names.Equal("security_user.user_name", ":user");
    return "SELECT 0, 0, group_name, CAST(NULL AS TEXT),"
           " CASE WHEN group_name = CAST(group_name AS TEXT) THEN 0 ELSE -1 END, 0 FROM security_user WHERE " +
           isUser + " UNION ALL SELECT 1, 0, attribute_name, attribute_value, 0, 0 FROM security_attribute WHERE " +
           names.Equal("user_name", ":user") + " UNION ALL " +
           PermissionRows("security_permission", names.GrantedToUser(":user")) + " UNION ALL " +
           PermissionRows("security_user, security_permission",
                          isUser + " AND " + names.GrantedToGroup("security_user.group_name"));
}

std::string PermissionsOfBothRows(const NameComparison& names)
{
    return PermissionRows("security_permission", names.GrantedToUser(":user")) + " UNION ALL " +
           PermissionRows("security_permission", names.GrantedToGroup(":group"));
}

constexpr const char* inOrder = " ORDER BY 1, 2";

} // namespace

class SecurityDatabase::Connection {
public:
    Connection(const std::string& connectionText, unsigned timeout)
        : connection(connectionText, timeout), userWithPermissions(connection.Session()),
          permissions(connection.Session())
    {
        permissions.exchange(soci::use(groupName, "group"));
        const NameComparison names(connection.BytewiseCollation());
        connection.Keep([&] {
            Prepare(permissions, PermissionsOfBothRows(names) + inOrder);
            Prepare(userWithPermissions, UserWithPermissionsRows(names) + inOrder);
        });
    }

    ~Connection() { connection.End(); }

    bool IsCurrent() const { return connection.IsCurrent(); }

    // Runs both statements: a missing table, column or right is noticed only then. Requests check the rows.
    void TryStatements()
    {
        for (soci::statement* statement : {&userWithPermissions, &permissions}) {
            Execute(*statement);
            while (statement->fetch()) {
            }
        }
    }

    template <class Permissions>
    std::optional<UserWithPermissions<Permissions>> ReadUser(const std::string& name)
    {
        userName = name;
        std::optional<UserWithPermissions<Permissions>> found;
        Execute(userWithPermissions);
        while (userWithPermissions.fetch()) {
            if (section == userSection) {
                if (found) {
                    throw std::runtime_error(fmt::format("the user '{}' has more than one row in security_user", name));
                }
                found.emplace().user.groupName = GroupName();
            } else if (!found) {
                continue; // attributes and permissions of a name that no user has
            } else if (section == attributeSection) {
                AddAttribute(found->user);
            } else {
                found->permissions.Add(Permission());
            }
        }
        connection.RequireWhole();
        return found;
    }

    std::vector<PermissionBase> ReadPermissions(const std::string& group, const std::string& name)
    {
        groupName = group;
        userName = name;
        PermissionsInOrder found;
        Execute(permissions);
        while (permissions.fetch()) {
            found.Add(Permission());
        }
        connection.RequireWhole();
        return found.Take();
    }

private:
    const std::string& GroupName() const
    {
        const RowPlace place{"security_user", userName};
        const std::string& name = row.name.At(place);
        if (row.value < 0) {
            throw std::runtime_error(
                fmt::format("{} holds a group_name that is no text; write it as text", place.Text()));
        }
        return name;
    }

    void AddAttribute(SecurityUser& user) const
    {
        const RowPlace place{"security_attribute", userName};
        const std::string& attribute = row.name.At(place);
        const std::string& value = row.resource.At(place);
        if (!allowedAttributes.Allows(value)) {
            allowedAttributes.Refuse(place.Text());
        }
        if (!user.attributes.emplace(attribute, value).second) {
            throw std::runtime_error(fmt::format("{} holds two values of '{}'", place.Text(), attribute));
        }
    }

    PermissionBase Permission() const
    {
        PermissionBase permission = row.Permission();
        if (!AllowsResourceOf(allowedResources, permission)) {
            allowedResources.Refuse(RowPlace{"security_permission", {}, row.position}.Text());
        }
        return permission;
    }

    void Prepare(soci::statement& statement, const std::string& sql)
    {
        statement.exchange(soci::into(section));
        row.Bind(statement);
        statement.exchange(soci::use(userName, "user"));
        statement.alloc();
        statement.prepare(sql);
        statement.define_and_bind();
    }

    // Receives all rows, so that fetching them does not wait for the server.
    void Execute(soci::statement& statement)
    {
        connection.Keep([&statement] { statement.execute(); });
    }

    const AllowedTexts allowedResources{allowedResourcesVariable};
    const AllowedTexts allowedAttributes{allowedAttributesVariable};

    // The statements are bound to these.
    std::string userName;
    std::string groupName;
    long long section = 0;
    PermissionRow row; // in a user's row, `name` is the group's; in an attribute's row, `resource` is the value

    DatabaseConnection connection;
    soci::statement userWithPermissions;
    soci::statement permissions;
};

SecurityDatabase::SecurityDatabase(std::string connectionText, unsigned timeout)
    : text(std::move(connectionText)), timeoutSeconds(std::min(timeout, longestTimeoutSeconds))
{
}

SecurityDatabase::~SecurityDatabase()
{
    LeaveToParent();
}

// A forked process shares its parent's connections. Closing them would close them for both.
void SecurityDatabase::LeaveToParent()
{
    if (process != getpid()) {
        static_cast<void>(connection.release());
        process = getpid();
    }
}

// Closes the connection to an SQLite file that another file has replaced.
void SecurityDatabase::DropReplacedFile()
{
    if (connection && !connection->IsCurrent()) {
        connection.reset();
    }
}

template <class Question>
auto SecurityDatabase::Try(const char* name, Question question)
{
    LeaveToParent();
    const char* step = "connecting";
    try {
        DropReplacedFile();
        if (!connection) {
            connection = std::make_unique<Connection>(text, timeoutSeconds);
        }
        step = name;
        return question(*connection);
    } catch (const std::runtime_error& error) {
        connection.reset();
        throw std::runtime_error(fmt::format("{}: {}", step, ReasonOf(error)));
    } catch (...) {
        connection.reset();
        throw;
    }
}

template <class Question>
auto SecurityDatabase::Ask(const char* function, const char* name, Question question)
{
    try {
        return Try(name, question);
    } catch (const std::runtime_error& error) {
        LogFailure(function, text, "failed", error.what());
        throw;
    }
}

template <class Permissions>
std::optional<UserWithPermissions<Permissions>> SecurityDatabase::ReadUser(const char* function,
                                                                           const std::string& userName)
{
    return Ask(function, "reading the user with permissions",
               [&](Connection& open) { return open.ReadUser<Permissions>(userName); });
}

template std::optional<UserWithPermissions<GrantedPermissions>>
SecurityDatabase::ReadUser<GrantedPermissions>(const char* function, const std::string& userName);
template std::optional<UserWithPermissions<PermissionsInOrder>>
SecurityDatabase::ReadUser<PermissionsInOrder>(const char* function, const std::string& userName);

std::vector<PermissionBase> SecurityDatabase::ReadPermissions(const char* function, const std::string& groupName,
                                                              const std::string& userName)
{
    return Ask(function, "reading the permissions",
               [&](Connection& open) { return open.ReadPermissions(groupName, userName); });
}

std::unique_ptr<SecurityDatabase> SecurityDatabase::Open(const char* function, const char* connectionText,
                                                         unsigned timeoutSeconds, const char* mode)
{
    const std::string text = connectionText != nullptr ? connectionText : "";
    try {
        if (mode == nullptr || std::strcmp(mode, connectionMode) != 0) {
            throw std::runtime_error(fmt::format("the only mode offered is '{}'", connectionMode));
        }
        std::unique_ptr<SecurityDatabase> database(new SecurityDatabase(text, timeoutSeconds));
        database->Try("trying the statements", [](Connection& open) { open.TryStatements(); });
        return database;
    } catch (const std::runtime_error& error) {
        LogFailure(function, text, "cannot be used", error.what());
        return nullptr;
    }
}

} // namespace secm::platform
