// `acfilter check`: the mistakes in a configuration and in what is granted.
#pragma once

#include "tools/acfilter/commands/CommonOptions.h"
#include "tools/acfilter/commands/ExitStatus.h"

namespace secm::acfilter {

struct CheckOptions {
    HostOptions host;
    bool oneRepository = false; ///< Only `host.repository`; false: all repositories.
    bool withSecurity = false;  ///< Also what `host.securityDatabase` grants.
    bool isStrict = false;      ///< Warnings count as errors for the exit status.
    Format format = Format::text;
};

/// Gives rulesAreWrong when there is an error. Throws std::exception when it fails.
ExitStatus RunCheck(const CheckOptions& options);

} // namespace secm::acfilter
