// `acfilter explain`: how one user's filter comes about, also as it would be after a change.
#pragma once

#include "tools/acfilter/commands/CommonOptions.h"
#include "tools/acfilter/commands/ExitStatus.h"

#include <string>
#include <vector>

namespace secm::acfilter {

struct ExplainOptions {
    HostOptions host;
    RequestOptions request; ///< With the format text or json.
    bool isFull = false;
    std::vector<std::string> attributes;  ///< NAME=VALUE
    std::vector<std::string> grants;      ///< NAME:VALUE or NAME:VALUE:RESOURCE
    std::vector<std::string> revocations; ///< NAME or NAME:RESOURCE
    std::string user;
};

/// Throws UsageError, and std::exception when it fails.
ExitStatus RunExplain(const ExplainOptions& options);

} // namespace secm::acfilter
