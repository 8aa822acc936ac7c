#include "tools/acfilter/commands/Connection.h"

#include "SECM_AccessControl/SECM_AccessControlInterface.h"
#include "analysis/trace/Tracer.h"
#include "platform/security_manager/SECM_Listing.h"

#include <stdexcept>

namespace secm::acfilter {

namespace {

// The security manager only logs why it refuses. A listing of the same database throws the reason.
void RequireConnection(bool isConnected, const HostOptions& options, const std::string& option)
{
    if (isConnected) {
        return;
    }
    if (openSECM_Listing != nullptr) {
        try {
            openSECM_Listing(options.securityDatabase.c_str(), options.timeoutSeconds);
        } catch (const std::runtime_error& error) {
            throw std::runtime_error(option + ": " + error.what());
        }
    }
    throw std::runtime_error("the security database given by " + option +
                             " refused the connection; the reason is logged at level 3");
}

} // namespace

void Connect(SECM_AccessControlInterface& accessControl, const HostOptions& options, const std::string& option)
{
    RequireConnection(accessControl.InitSecurityConnection(options.securityDatabase.c_str(), options.timeoutSeconds),
                      options, option);
}

void Connect(analysis::Tracer& tracer, const HostOptions& options, const std::string& option)
{
    RequireConnection(tracer.Connect(options.securityDatabase.c_str(), options.timeoutSeconds), options, option);
}

} // namespace secm::acfilter
