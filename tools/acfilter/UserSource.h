// Where the users of a list come from: a file, standard input, or all that a security database knows.
#pragma once

#include "tools/acfilter/UserList.h"

#include <optional>

/// Makes sure that `path`, as given to --users-from, names a file, or standard input when it is "-" and that is open.
/// Call it before any file is opened. Throws std::runtime_error.
void RequireUsersFrom(const std::optional<std::string>& path);

/// Calls `handle` for each user of a file; of standard input when `path` is "-". Throws std::runtime_error.
void ForEachUserOfFile(const std::string& path, const UserHandler& handle);

/// Calls `handle` for each user of the security database, in constant memory. Throws std::runtime_error, also where the
/// security manager cannot list its users.
void ForEachUserOfDatabase(const std::string& connectionText, unsigned timeoutSeconds, const UserHandler& handle);
