// `acfilter filter`: the filters of the users who are named.
#pragma once

#include "tools/acfilter/commands/CommonOptions.h"
#include "tools/acfilter/commands/ExitStatus.h"

#include <optional>
#include <string>
#include <vector>

namespace secm::acfilter {

struct FilterOptions {
    HostOptions host;
    RequestOptions request; ///< With the format text or json.
    std::vector<std::string> users;
    std::optional<std::string> usersFrom;
};

/// Prints the filters in the order in which they are asked for. Throws UsageError, and std::exception when it fails;
/// what is printed by then stays.
ExitStatus RunFilter(const FilterOptions& options);

} // namespace secm::acfilter
