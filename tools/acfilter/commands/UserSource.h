// Where the users of a list come from: what --users-from names, or all that a security database knows.
#pragma once

#include "tools/acfilter/commands/CommonOptions.h"
#include "tools/acfilter/io/UserList.h"

#include <optional>
#include <string>

namespace secm::acfilter {

/// Makes sure that `path`, as given to --users-from, is not empty, and when it is "-" that standard input can be read.
/// Throws UsageError and std::runtime_error.
void RequireUsersFrom(const std::optional<std::string>& path);

/// Calls `handle` for each user of the security database that `options` name, in constant memory. Throws
/// std::runtime_error, also where the security manager cannot list its users.
void ForEachUserOfDatabase(const HostOptions& options, const UserHandler& handle);

} // namespace secm::acfilter
