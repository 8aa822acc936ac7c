// Answers the security manager's questions about a log-in. A request writes the answers into the members before it
// logs in.
#pragma once

#include "platform/security_manager/SECM_CallBackInterface.h"

#include <string>

class AccessControlCallback : public SECM_CallBackInterface {
public:
    /// The application that users log in to; after `Login`, `IsLoggedIn` is called with the same name.
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
