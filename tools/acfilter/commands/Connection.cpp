#include "tools/acfilter/commands/Connection.h"

#include "SECM_AccessControl/SECM_AccessControlInterface.h"
#include "analysis/trace/Tracer.h"

#include <stdexcept>

namespace secm::acfilter {

namespace {

void RequireConnection(bool isConnected, const std::string& option)
{
    if (!isConnected) {
        throw std::runtime_error("the security database given by " + option +
                                 " refused the connection; the reason is logged at level 3");
    }
}

} // namespace

void Connect(SECM_AccessControlInterface& accessControl, const HostOptions& options, const std::string& option)
{
    RequireConnection(accessControl.InitSecurityConnection(options.securityDatabase.c_str(), options.timeoutSeconds),
                      option);
}

void Connect(analysis::Tracer& tracer, const HostOptions& options, const std::string& option)
{
    RequireConnection(tracer.Connect(options.securityDatabase.c_str(), options.timeoutSeconds), option);
}

} // namespace secm::acfilter
