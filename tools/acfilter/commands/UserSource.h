// Where the users of a list come from: the file of --users-from, or a security database.
#pragma once

#include "tools/acfilter/commands/CommonOptions.h"
#include "tools/acfilter/io/UserList.h"

#include <optional>
#include <string>

namespace secm::acfilter {

/// Throws UsageError when `path`, as given to --users-from, is empty, and std::runtime_error when it is "-" and
/// standard input cannot be read.
void RequireUsersFrom(const std::optional<std::string>& path);

/// Calls `handle` for each user of the security database that `options` name, in constant memory. Throws
/// std::runtime_error, also where the security manager cannot list its users.
void ForEachUserOfDatabase(const HostOptions& options, const UserHandler& handle);

} // namespace secm::acfilter
