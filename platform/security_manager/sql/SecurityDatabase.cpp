// Every statement answers rows of one shape (section, position, name, text, value, is_conditional), so that a
// log-in is one statement and therefore one consistent view: the user, then the attributes, then the
// permissions.
#include "platform/security_manager/sql/SecurityDatabase.h"

#include "platform/logging/Tmr_LogFile.h"
#include "platform/security_manager/sql/ConnectionText.h"

#include <soci/soci.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

// Declared here, for the headers that declare them ask for the development files of each database's client.
extern "C" {
const soci::backend_factory* factory_sqlite3();
const soci::backend_factory* factory_postgresql();
}

namespace {

constexpr int failureLevel = 3;
constexpr int moduleNumber = 198;

enum Section : long long { userSection = 0, attributeSection = 1, permissionSection = 2 };

constexpr const char* userRows =
    "SELECT 0, 0, group_name, CAST(NULL AS TEXT), 0, 0 FROM security_user WHERE user_name = :user"
    " UNION ALL "
    "SELECT 1, 0, attribute_name, attribute_value, 0, 0 FROM security_attribute WHERE user_name = :user";

// SQLite keeps whatever was written into a number column, so what is no whole number of 32 bits becomes -1
// here and a fault below; a condition that is anything but 0 is one, for a condition grants less.
std::string PermissionRows(const char* granteeType, const char* grantee)
{
    return std::string("SELECT 2, position, permission_name, resource,"
                       " CASE WHEN permission_value BETWEEN 0 AND 4294967295"
                       " AND CAST(permission_value AS BIGINT) = permission_value THEN permission_value ELSE -1 END,"
                       " CASE WHEN is_conditional = 0 THEN 0 ELSE 1 END"
                       " FROM security_permission WHERE grantee_type = '") +
           granteeType + "' AND grantee = " + grantee;
}

// An empty group name is no group, whatever is granted to it.
std::string GrantedTo(const char* user, const char* group)
{
    return PermissionRows("user", user) + " UNION ALL " + PermissionRows("group", group) + " AND grantee <> ''";
}

constexpr const char* groupOfUser = "(SELECT group_name FROM security_user WHERE user_name = :user)";
constexpr const char* inOrder = " ORDER BY 1, 2";

struct Row {
    long long section = 0;
    long long position = 0;
    std::string name;
    soci::indicator nameIndicator = soci::i_null;
    std::string text; // what the row before it left there, when this one is null
    soci::indicator textIndicator = soci::i_null;
    long long value = 0;
    int isConditional = 0;
};

// The backends are linked, not looked for by SOCI when a text names them: a library that SOCI opens by itself could not
// be unloaded with ours.
soci::connection_parameters ParametersOf(const std::string& connectionText, unsigned timeout)
{
    const DatabaseAddress address = DatabaseAddressOf(connectionText, timeout);
    return {address.isPostgreSql ? *factory_postgresql() : *factory_sqlite3(), address.settings};
}

// Databases explain themselves in several lines.
std::string OneLine(std::string text)
{
    text.erase(text.find_last_not_of(" \n") + 1);
    std::replace_if(
        text.begin(), text.end(), [](char character) { return character == '\n' || character == '\t'; }, ' ');
    return text;
}

} // namespace

class SecurityDatabase::Connection {
public:
    Connection(const std::string& connectionText, unsigned timeout)
        : session(ParametersOf(connectionText, timeout)), userWithPermissions(session), user(session),
          permissions(session)
    {
        if (timeout != 0 && session.get_backend_name() == "postgresql") {
            session << "SET statement_timeout = " << timeout * 1000;
        }
        permissions.exchange(soci::use(groupName, "group"));
        Prepare(permissions, GrantedTo(":user", ":group") + inOrder);
        Prepare(user, std::string(userRows) + inOrder);
        Prepare(userWithPermissions, userRows + (" UNION ALL " + GrantedTo(":user", groupOfUser)) + inOrder);
    }

    // Tables, columns and rights show only when a statement runs; what it finds is the requests' business.
    void TryStatements()
    {
        for (soci::statement* statement : {&userWithPermissions, &user, &permissions}) {
            statement->execute();
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
        permissions.execute();
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
        statement.execute();
        while (statement.fetch()) {
            if (row.section == userSection) {
                if (found) {
                    throw std::runtime_error("the user '" + name + "' has more than one row in security_user");
                }
                found.emplace().groupName = Checked(row.name, row.nameIndicator);
            } else if (!found) {
                continue; // attributes and permissions of a name that is no user's
            } else if (row.section == attributeSection) {
                const std::string& attribute = Checked(row.name, row.nameIndicator);
                if (!found->attributes.emplace(attribute, Checked(row.text, row.textIndicator)).second) {
                    throw std::runtime_error(Place() + " holds two values of '" + attribute + "'");
                }
            } else {
                found->permissions.push_back(Permission());
            }
        }
        return found;
    }

    // The row that is being read, as an administrator finds it.
    std::string Place() const
    {
        switch (row.section) {
        case userSection:
            return "security_user of '" + userName + "'";
        case attributeSection:
            return "security_attribute of '" + userName + "'";
        default:
            return "the row of security_permission at position " + std::to_string(row.position);
        }
    }

    // The interfaces hand texts out up to their first NUL; cut short they would be other names and other resources.
    const std::string& Checked(const std::string& column, soci::indicator indicator) const
    {
        if (indicator == soci::i_null) {
            throw std::runtime_error(Place() + " holds NULL where a text must stand");
        }
        if (column.find('\0') != std::string::npos) {
            throw std::runtime_error(Place() + " holds a text with a NUL byte; remove it");
        }
        return column;
    }

    PermissionBase Permission() const
    {
        if (row.value < 0) {
            throw std::runtime_error(Place() + " has a permission_value that is no whole number from 0 to 4294967295");
        }
        const bool hasResource = row.textIndicator != soci::i_null;
        return {Checked(row.name, row.nameIndicator).c_str(), static_cast<unsigned>(row.value),
                hasResource ? Checked(row.text, row.textIndicator).c_str() : nullptr, row.isConditional != 0};
    }

    void Prepare(soci::statement& statement, const std::string& sql)
    {
        statement.exchange(soci::into(row.section));
        statement.exchange(soci::into(row.position));
        statement.exchange(soci::into(row.name, row.nameIndicator));
        statement.exchange(soci::into(row.text, row.textIndicator));
        statement.exchange(soci::into(row.value));
        statement.exchange(soci::into(row.isConditional));
        statement.exchange(soci::use(userName, "user"));
        statement.alloc();
        statement.prepare(sql);
        statement.define_and_bind();
    }

    // What the statements are bound to.
    std::string userName;
    std::string groupName;
    Row row;

    soci::session session;
    soci::statement userWithPermissions;
    soci::statement user;
    soci::statement permissions;
};

SecurityDatabase::SecurityDatabase(std::string connectionText, unsigned timeout)
    : text(std::move(connectionText)), timeoutSeconds(std::min(timeout, longestTimeoutSeconds))
{
}

SecurityDatabase::~SecurityDatabase() = default;

template <class Question>
auto SecurityDatabase::Ask(const char* name, Question question)
{
    const char* step = "connecting";
    try {
        if (!connection) {
            connection = std::make_unique<Connection>(text, timeoutSeconds);
        }
        step = name;
        return question(*connection);
    } catch (const soci::soci_error& error) {
        connection.reset();
        throw std::runtime_error(std::string(step) + ": " + OneLine(error.get_error_message()));
    } catch (const std::runtime_error& error) {
        connection.reset();
        throw std::runtime_error(std::string(step) + ": " + error.what());
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
