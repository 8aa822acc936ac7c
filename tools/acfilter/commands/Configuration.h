// The configuration that a command works on, as the options name it.
#pragma once

#include "platform/configuration/CFG_Candidate.h"
#include "tools/acfilter/commands/CommonOptions.h"

#include <memory>
#include <string>

namespace secm::acfilter {

/// Reads the configuration at `path` and does not put it in force. `option` names the option that gave the path, for
/// errors. Never null. Throws CFG_Error when it cannot be used, and std::runtime_error when the path is empty or the
/// configuration library in use cannot read candidates.
std::shared_ptr<const CFG_Candidate> ReadConfiguration(const std::string& path, const char* option,
                                                       const CFG_FileObserver& observe = {});

/// Puts the configuration that --config names in force for the process. Null when the configuration library in use
/// cannot read candidates; then what `CFG_REPOSITORY` names is in force, and --config must name the same. Throws as
/// ReadConfiguration does.
std::shared_ptr<const CFG_Candidate> UseConfiguration(const HostOptions& options);

/// Throws std::runtime_error when the configuration that the calling thread sees, which was read from `path`, lacks the
/// repository: the module would go on with empty settings.
void RequireRepository(const std::string& repository, const std::string& path);

} // namespace secm::acfilter
