// Tells the security manager whom to log in: what the request wrote here just before.
#pragma once

#include "platform/security_manager/SECM_CallBackInterface.h"

#include <string>

class AccessControlCallback : public SECM_CallBackInterface {
public:
    /// Under which application users log in; asked for again when the log-in is tested.
    static constexpr const char* applicationName = "brantor";

    bool GetApplicationName(std::string& out) override;
    bool GetUserName(std::string& out) override;
    bool GetAuxiliaryText(std::string& out, bool& flag) override;
    bool GetGroup(std::string& out) override;
    bool GetSecondGroup(std::string& out) override;
    bool GetIpAddress(std::string& out) override;

    std::string userName;
    std::string auxiliaryText;
    std::string group;
    std::string secondGroup;
    std::string ipAddress;
};
