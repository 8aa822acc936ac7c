// Connects the module or a tracer to the security database that the options name.
#pragma once

#include "tools/acfilter/commands/CommonOptions.h"

#include <string>

class SECM_AccessControlInterface;

namespace secm::analysis {
class Tracer;
}

namespace secm::acfilter {

/// `option` names the option that gave the database, for the error. Throws std::runtime_error when the security manager
/// refuses.
void Connect(SECM_AccessControlInterface& accessControl, const HostOptions& options,
             const std::string& option = "--security");
void Connect(analysis::Tracer& tracer, const HostOptions& options, const std::string& option = "--security");

} // namespace secm::acfilter
