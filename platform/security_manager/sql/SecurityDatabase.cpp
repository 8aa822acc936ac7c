// Every statement answers rows of one shape (section, position, name, text, value, is_conditional), so that a
// log-in is one statement and therefore one consistent view: the user, then the attributes, then the
// permissions.
#include "platform/security_manager/sql/SecurityDatabase.h"

#include "platform/logging/Tmr_LogFile.h"
#include "platform/security_manager/sql/AllowedTexts.h"
#include "platform/security_manager/sql/ConnectionText.h"
#include "platform/security_manager/sql/DatabaseAccess.h"
#include "platform/security_manager/sql/TimeLimit.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace {

constexpr int failureLevel = 3;
constexpr int moduleNumber = 198;

enum Section : long long { userSection = 0, attributeSection = 1, permissionSection = 2 };

constexpr std::string_view ownValue = "%my%";

constexpr const char* userRows =
    "SELECT 0, 0, group_name, CAST(NULL AS TEXT), 0, 0 FROM security_user WHERE user_name = :user"
    " UNION ALL "
    "SELECT 1, 0, attribute_name, attribute_value, 0, 0 FROM security_attribute WHERE user_name = :user";

std::string PermissionRows(const char* granteeType, const char* grantee)
{
    return std::string("SELECT 2, ") + permissionColumns + " FROM security_permission WHERE grantee_type = '" +
           granteeType + "' AND grantee = " + grantee;
}

// An empty group name is no group, whatever is granted to it.
std::string GrantedTo(const char* user, const char* group)
{
    return PermissionRows("user", user) + " UNION ALL " + PermissionRows("group", group) + " AND grantee <> ''";
}

constexpr const char* groupOfUser = "(SELECT group_name FROM security_user WHERE user_name = :user)";
constexpr const char* inOrder = " ORDER BY 1, 2";

} // namespace

class SecurityDatabase::Connection {
public:
    Connection(const std::string& connectionText, unsigned timeout)
        : session(ParametersOf(connectionText, timeout)), userWithPermissions(session), user(session),
          permissions(session), timeLimit(session, timeout)
    {
        permissions.exchange(soci::use(groupName, "group"));
        timeLimit.Keep([this, timeout] {
            SetUp(session, timeout);
            Prepare(permissions, GrantedTo(":user", ":group") + inOrder);
            Prepare(user, std::string(userRows) + inOrder);
            Prepare(userWithPermissions, userRows + (" UNION ALL " + GrantedTo(":user", groupOfUser)) + inOrder);
        });
    }

    // Tables, columns and rights show only when a statement runs; what it finds is the requests' business.
    void TryStatements()
    {
        for (soci::statement* statement : {&userWithPermissions, &user, &permissions}) {
            Execute(*statement);
            while (statement->fetch()) {
            }
        }
    }

    std::optional<SecurityUser> ReadUserWithPermissions(const std::string& name)
    {
        return ReadUser(userWithPermissions, name);
    }

    std::optional<SecurityUser> ReadUser(const std::string& name) { return ReadUser(user, name); }

    std::vector<PermissionBase> ReadPermissions(const std::string& group, const std::string& name)
    {
        groupName = group;
        userName = name;
        std::vector<PermissionBase> found;
        Execute(permissions);
        while (permissions.fetch()) {
            found.push_back(Permission());
        }
        return found;
    }

private:
    std::optional<SecurityUser> ReadUser(soci::statement& statement, const std::string& name)
    {
        userName = name;
        std::optional<SecurityUser> found;
        Execute(statement);
        while (statement.fetch()) {
            if (section == userSection) {
                if (found) {
                    throw std::runtime_error("the user '" + name + "' has more than one row in security_user");
                }
                found.emplace().groupName = row.name.At({"security_user", name});
            } else if (!found) {
                continue; // attributes and permissions of a name that is no user's
            } else if (section == attributeSection) {
                const RowPlace place{"security_attribute", name};
                const std::string& attribute = row.name.At(place);
                const std::string& value = row.resource.At(place);
                allowedAttributes.Require(value, place);
                if (!found->attributes.emplace(attribute, value).second) {
                    throw std::runtime_error(place.Text() + " holds two values of '" + attribute + "'");
                }
            } else {
                found->permissions.Add(Permission());
            }
        }
        if (found) {
            found->permissions.ShrinkToFit();
        }
        return found;
    }

    PermissionBase Permission() const
    {
        PermissionBase permission = row.Permission();
        // The user's own value is an attribute, which has a rule of its own.
        if (permission.resource() != nullptr && permission.resource() != ownValue) {
            allowedResources.Require(permission.resource(), {"security_permission", {}, row.position});
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

    // What it finds is here when this returns: fetching waits for no server.
    void Execute(soci::statement& statement)
    {
        timeLimit.Keep([&statement] { statement.execute(); });
    }

    const AllowedTexts allowedResources{"SECM_ALLOWED_RESOURCES"};
    const AllowedTexts allowedAttributes{"SECM_ALLOWED_ATTRIBUTES"};

    // What the statements are bound to.
    std::string userName;
    std::string groupName;
    long long section = 0;
    PermissionRow row; // of the user, the name is the group's; of an attribute, the resource is its value

    soci::session session;
    soci::statement userWithPermissions;
    soci::statement user;
    soci::statement permissions;
    TimeLimit timeLimit; // before the statements go, which take leave of the server
};

SecurityDatabase::SecurityDatabase(std::string connectionText, unsigned timeout)
    : text(std::move(connectionText)), timeoutSeconds(std::min(timeout, longestTimeoutSeconds))
{
}

SecurityDatabase::~SecurityDatabase()
{
    LeaveToParent();
}

// A process that was forked shares its parent's connections, and would end them for both.
void SecurityDatabase::LeaveToParent()
{
    if (process != getpid()) {
        connection.release();
        process = getpid();
    }
}

template <class Question>
auto SecurityDatabase::Ask(const char* name, Question question)
{
    LeaveToParent();
    const char* step = "connecting";
    try {
        if (!connection) {
            connection = std::make_unique<Connection>(text, timeoutSeconds);
        }
        step = name;
        return question(*connection);
    } catch (const std::runtime_error& error) {
        connection.reset();
        throw std::runtime_error(std::string(step) + ": " + ReasonOf(error));
    } catch (...) {
        connection.reset();
        throw;
    }
}

std::optional<SecurityUser> SecurityDatabase::ReadUserWithPermissions(const std::string& userName)
{
    return Ask("reading the user with permissions",
               [&](Connection& open) { return open.ReadUserWithPermissions(userName); });
}

std::optional<SecurityUser> SecurityDatabase::ReadUser(const std::string& userName)
{
    return Ask("reading the user", [&](Connection& open) { return open.ReadUser(userName); });
}

std::vector<PermissionBase> SecurityDatabase::ReadPermissions(const std::string& groupName, const std::string& userName)
{
    return Ask("reading the permissions", [&](Connection& open) { return open.ReadPermissions(groupName, userName); });
}

std::unique_ptr<SecurityDatabase> SecurityDatabase::Open(const char* function, const char* connectionText,
                                                         unsigned timeoutSeconds, const char* mode)
{
    const std::string text = connectionText != nullptr ? connectionText : "";
    std::string reason;
    try {
        if (mode == nullptr || std::strcmp(mode, "nonsecure") != 0) {
            throw std::runtime_error("the only mode offered is 'nonsecure'");
        }
        std::unique_ptr<SecurityDatabase> database(new SecurityDatabase(text, timeoutSeconds));
        database->Ask("trying the statements", [](Connection& open) { open.TryStatements(); });
        return database;
    } catch (const std::runtime_error& error) {
        reason = error.what();
    }
    if (TmrGLog.StoreParams("platform/security_manager/sql/SecurityDatabase", function, __LINE__, failureLevel,
                            moduleNumber, 1) != 0) {
        TmrGLog.Log("The security database '%s' cannot be used: %s\n", WithoutSecrets(text, text).c_str(),
                    WithoutSecrets(text, reason).c_str());
    }
    return nullptr;
}
