#include "testing/InMemorySecurity.h"

#include "platform/security_manager/SECM_CallBackInterface.h"

#include <algorithm>

namespace secm::testing {

bool User::GetGroupName(std::string& groupName)
{
    groupName = group;
    return true;
}

const char* User::GetAttribute(const char* name)
{
    const auto found = attributes.find(name);
    return found != attributes.end() ? found->second.c_str() : nullptr;
}

bool InMemorySecurityManager::Login(SECM_CallBackInterface* callback, bool /*flag*/)
{
    std::string name;
    const auto found = callback->GetUserName(name) ? users.find(name) : users.end();
    user = found != users.end() ? &found->second : nullptr;
    callback->GetApplicationName(loginApplication);
    return user != nullptr;
}

bool InMemorySecurityManager::IsLoggedIn(const char* application)
{
    return user != nullptr && loginApplication == application;
}

// The first permission with the same name and resource decides.
bool InMemorySecurityManager::CheckPermission(const PermissionBase& sought)
{
    if (user == nullptr) {
        return false;
    }
    const auto found = std::find(user->permissions.begin(), user->permissions.end(), sought);
    return found != user->permissions.end() && sought <= *found;
}

bool InMemorySecurityManager::GetResources(const std::string& name, unsigned value, std::vector<std::string>& resources)
{
    if (user == nullptr) {
        return false; // not an empty list, which would be an answer
    }
    for (const PermissionBase& granted : user->permissions) {
        if (granted.name() == name && (granted.value() & value) == value && granted.resource() != nullptr) {
            resources.emplace_back(granted.resource());
        }
    }
    return true;
}

UserDetailsInterface* InMemoryAdministration::GetUserDetails(const char* /*domain*/, const char* userName)
{
    const auto found = users.find(userName);
    return found != users.end() ? &found->second : nullptr;
}

PermissionListInterface* InMemoryAdministration::GetPermissionList(const char* /*group*/, const char* userName)
{
    const auto found = users.find(userName);
    return found != users.end() ? new InMemoryPermissionList(found->second.permissions) : nullptr;
}

} // namespace secm::testing
