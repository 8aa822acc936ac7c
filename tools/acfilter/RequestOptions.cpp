#include "tools/acfilter/RequestOptions.h"

#include "SECM_AccessControl/SECM_AccessControlInterface.h"
#include "tools/acfilter/TextOption.h"

void AddRequestOptions(CLI::App& command, RequestOptions& options, const char* help,
                       const std::vector<std::string>& formats)
{
    AddOption(command, "--ip", options.ipAddress, "The address that the users log in from")->type_name("ADDRESS");
    command.add_flag("--no-login", options.withoutLogin, "Ask by user name, without logging the user in");
    AddOption(command, "--format", options.format, help)->check(CLI::IsMember(formats));
}

void Connect(SECM_AccessControlInterface& accessControl, const HostOptions& options, const std::string& option)
{
    if (!accessControl.InitSecurityConnection(options.securityDatabase.c_str(), options.timeoutSeconds)) {
        throw std::runtime_error("the security database given by " + option +
                                 " refused the connection; the reason is logged at level 3");
    }
}
