#include "SECM_AccessControl/AccessControlCallback.h"

bool AccessControlCallback::GetApplicationName(std::string& out)
{
    out = applicationName;
    return true;
}

bool AccessControlCallback::GetUserName(std::string& out)
{
    out = userName;
    return true;
}

bool AccessControlCallback::GetAuxiliaryText(std::string& out, bool& flag)
{
    out = auxiliaryText;
    flag = false;
    return true;
}

bool AccessControlCallback::GetGroup(std::string& out)
{
    out = group;
    return true;
}

bool AccessControlCallback::GetSecondGroup(std::string& out)
{
    out = secondGroup;
    return true;
}

bool AccessControlCallback::GetIpAddress(std::string& out)
{
    out = ipAddress;
    return true;
}
