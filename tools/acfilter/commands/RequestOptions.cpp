#include "tools/acfilter/commands/RequestOptions.h"

#include "SECM_AccessControl/SECM_AccessControlInterface.h"
#include "analysis/trace/Tracer.h"
#include "tools/acfilter/cli/TextOption.h"

namespace secm::acfilter {

void AddRequestOptions(CLI::App& command, RequestOptions& options, const char* help,
                       const std::vector<std::string>& formats)
{
    AddOption(command, "--ip", options.ipAddress, "The address that the users log in from")->type_name("ADDRESS");
    command.add_flag("--no-login", options.withoutLogin, "Ask by user name, without logging the user in");
    AddOption(command, "--format", options.format, help)->check(CLI::IsMember(formats));
}

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
