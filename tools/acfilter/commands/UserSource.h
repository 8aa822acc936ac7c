// Where the users of a list come from: a file, standard input, or all that a security database knows.
#pragma once

#include "tools/acfilter/io/UserList.h"

#include <optional>

namespace secm::acfilter {

/// Makes sure that `path`, as given to --users-from, is not empty, and when it is "-" that standard input can be read.
/// Throws std::runtime_error.
void RequireUsersFrom(const std::optional<std::string>& path);

/// Calls `handle` for each user of a file; of standard input when `path` is "-". Throws std::runtime_error, also when
/// there is none.
void ForEachUserOfFile(const std::string& path, const UserHandler& handle);

/// Calls `handle` for each user of the security database, in constant memory. Throws std::runtime_error, also where the
/// security manager cannot list its users.
void ForEachUserOfDatabase(const std::string& connectionText, unsigned timeoutSeconds, const UserHandler& handle);

} // namespace secm::acfilter
