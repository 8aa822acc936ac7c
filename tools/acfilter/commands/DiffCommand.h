// `acfilter diff`: who would see more or less under another configuration or other permissions.
#pragma once

#include "tools/acfilter/commands/CommonOptions.h"
#include "tools/acfilter/commands/ExitStatus.h"

#include <optional>
#include <string>
#include <vector>

namespace secm::acfilter {

struct DiffOptions {
    HostOptions host;                              ///< Of the side before.
    RequestOptions request;                        ///< With the format text or json.
    DataOptions data;                              ///< Without a record.
    std::optional<std::string> toConfiguration;    ///< Else that of the side before.
    std::optional<std::string> toSecurityDatabase; ///< Else that of the side before.
    std::optional<std::string> usersFrom;          ///< Else every user of both security databases.
    ChangeOptions changes;                         ///< Tried on the side after.
    std::optional<std::string> forUser;            ///< Whose grants and attributes `changes` change: this user's ...
    std::optional<std::string> forGroup;           ///< ... or this group's.
    std::vector<std::string> excluding;            ///< The names of fields; see analysis::TraceComparison.
    bool isFull = false;
    bool isStrict = false; ///< somebodySeesMore also for a user of whom it is not known.
};

/// Gives somebodySeesMore when a user would see more. Throws UsageError, and std::exception when it fails.
ExitStatus RunDiff(const DiffOptions& options);

} // namespace secm::acfilter
