// The security database: three tables, read through SOCI. Each question is one statement. Log-in and requests by name
// use the same statement on SQLite and on PostgreSQL, so all give the same answers.
#pragma once

#include "platform/security_manager/PermissionsInOrder.h"
#include "platform/security_manager/sql/SecurityUser.h"

#include <sys/types.h>
#include <unistd.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace secm::platform {

/// A user with the permissions of the user and the user's group, by position, all of one snapshot. `Permissions` is
/// GrantedPermissions or PermissionsInOrder.
template <class Permissions>
struct UserWithPermissions {
    SecurityUser user;
    Permissions permissions;
};

/// One connection, used by one thread at a time. A question that fails throws std::runtime_error, whose text begins
/// with the question's name, and drops the connection; the text is logged at level 3 before. The next question then
/// connects again; so does a question after another file has taken the SQLite file's name, and the first one in a
/// forked process.
class SecurityDatabase {
public:
    /// Connects and tries every statement. Null when that fails or `mode` is not "nonsecure"; the reason is
    /// logged at level 3 as coming from `function`. A missing SQLite file is not created.
    static std::unique_ptr<SecurityDatabase> Open(const char* function, const char* connectionText,
                                                  unsigned timeoutSeconds, const char* mode);
    ~SecurityDatabase();

    /// No value when there is no such user. `function` asks, for the log.
    template <class Permissions>
    std::optional<UserWithPermissions<Permissions>> ReadUser(const char* function, const std::string& userName);

    /// What is granted to exactly this user and exactly this group; an empty group is no group.
    std::vector<PermissionBase> ReadPermissions(const char* function, const std::string& groupName,
                                                const std::string& userName);

private:
    class Connection;

    SecurityDatabase(std::string connectionText, unsigned timeoutSeconds);

    template <class Question>
    auto Try(const char* name, Question question);
    template <class Question>
    auto Ask(const char* function, const char* name, Question question);

    void LeaveToParent();
    void DropReplacedFile();

    std::string text;
    unsigned timeoutSeconds;
    pid_t process = getpid(); // the process that made the connection
    std::unique_ptr<Connection> connection;
};

} // namespace secm::platform
