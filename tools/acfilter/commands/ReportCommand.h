// `acfilter report`: who sees what, a row a user.
#pragma once

#include "tools/acfilter/commands/CommonOptions.h"
#include "tools/acfilter/commands/ExitStatus.h"

#include <optional>
#include <string>

namespace secm::acfilter {

struct ReportOptions {
    HostOptions host;
    RequestOptions request;
    DataOptions data;
    std::optional<std::string> usersFrom; ///< Else every user of the security database.
    std::optional<std::string> output;    ///< Else standard output.
    bool showValues = false;
    bool isFull = false;
};

/// Gives rulesAreWrong when an engine refuses a filter, or when a filter that is to hide every record shows rows.
/// Throws UsageError, and std::exception when it fails.
ExitStatus RunReport(const ReportOptions& options);

} // namespace secm::acfilter
