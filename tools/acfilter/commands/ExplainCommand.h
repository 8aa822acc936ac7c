// `acfilter explain`: how one user's filter comes about, also as it would be after a change.
#pragma once

#include "tools/acfilter/commands/CommonOptions.h"
#include "tools/acfilter/commands/ExitStatus.h"

#include <string>

namespace secm::acfilter {

struct ExplainOptions {
    HostOptions host;
    RequestOptions request; ///< With the format text or json.
    DataOptions data;
    bool isFull = false;
    ChangeOptions changes;
    std::string user;
};

/// Throws UsageError, and std::exception when it fails.
ExitStatus RunExplain(const ExplainOptions& options);

} // namespace secm::acfilter
