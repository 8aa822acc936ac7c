#include "analysis/trace/TracingDecorators.h"

#include "analysis/trace/TraceRecorder.h"
#include "platform/security_manager/PermissionListInterface.h"

#include <memory>

namespace secm::analysis {

const char* TracedDetails::GetAttribute(const char* name)
{
    const char* value = original->GetAttribute(name);
    recorder.AddAttribute(name, value);
    return value;
}

TracedSecurityManager::TracedSecurityManager(SecurityManagerInterface& originalManager, TraceRecorder& traceRecorder)
    : SecurityManagerDecorator(originalManager), recorder(traceRecorder), details(traceRecorder)
{
}

bool TracedSecurityManager::IsLoggedIn(const char* application)
{
    const bool isLoggedIn = original.IsLoggedIn(application);
    if (isLoggedIn) {
        recorder.AddUser(original.GetUserDetails());
    }
    return isLoggedIn;
}

bool TracedSecurityManager::CheckPermission(const PermissionBase& permission)
{
    const bool isHeld = original.CheckPermission(permission);
    recorder.AddPermission(permission, isHeld);
    return isHeld;
}

bool TracedSecurityManager::GetResources(const std::string& permissionName, unsigned permissionValue,
                                         std::vector<std::string>& resources)
{
    const bool areTold = original.GetResources(permissionName, permissionValue, resources);
    recorder.AddResources(resources, areTold);
    return areTold;
}

UserDetailsInterface* TracedSecurityManager::GetUserDetails()
{
    return details.For(original.GetUserDetails());
}

TracedAdministration::TracedAdministration(SMADM_Interface& originalInterface, TraceRecorder& traceRecorder)
    : AdministrationDecorator(originalInterface), recorder(traceRecorder), details(traceRecorder)
{
}

UserDetailsInterface* TracedAdministration::GetUserDetails(const char* domain, const char* userName)
{
    UserDetailsInterface* user = original.GetUserDetails(domain, userName);
    if (user != nullptr) {
        recorder.AddUser(user);
    }
    return details.For(user);
}

PermissionListInterface* TracedAdministration::GetPermissionList(const char* group, const char* user)
{
    std::unique_ptr<PermissionListInterface> list(original.GetPermissionList(group, user));
    if (!list) {
        recorder.AddMissingPermissionList();
    }
    return list.release();
}

} // namespace secm::analysis
