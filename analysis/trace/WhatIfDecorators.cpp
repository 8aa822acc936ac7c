#include "analysis/trace/WhatIfDecorators.h"

#include "platform/security_manager/PermissionsInOrder.h"
#include "platform/security_manager/SECM_CallBackInterface.h"
#include "platform/security_manager/SECM_Listing.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace secm::analysis {
namespace {

class ChangedPermissionList final : public PermissionListInterface {
public:
    explicit ChangedPermissionList(std::vector<PermissionBase> changed) : permissions(std::move(changed)) {}
    const std::vector<PermissionBase>* GetPermissions() override { return &permissions; }

private:
    std::vector<PermissionBase> permissions;
};

// A request refuses texts that the security manager does not allow, so what is tried may not hold them either.
void RequireAllowed(const WhatIf& tried)
{
    if (requireSECM_AllowedGrant != nullptr) {
        for (const PermissionBase& grant : tried.grants) {
            requireSECM_AllowedGrant(grant);
        }
    }
    if (requireSECM_AllowedAttribute != nullptr) {
        for (const auto& [name, value] : tried.attributes) {
            requireSECM_AllowedAttribute(name, value);
        }
    }
}

bool IsRevokedBy(const std::string& revoked, const PermissionBase& permission)
{
    const std::string name = permission.name();
    return revoked == name || (permission.resource() != nullptr && revoked == name + ":" + permission.resource());
}

} // namespace

std::vector<PermissionBase> WithChanges(WhatIf& tried, const std::vector<PermissionBase>& permissions)
{
    for (WhatIf::Revocation& revocation : tried.revocations) {
        revocation.revoked = 0;
    }
    platform::PermissionsInOrder applied;
    for (const PermissionBase& permission : permissions) {
        bool isRevoked = false;
        for (WhatIf::Revocation& revocation : tried.revocations) {
            // A permission that several revocations name counts for each of them.
            if (IsRevokedBy(revocation.permission, permission)) {
                ++revocation.revoked;
                isRevoked = true;
            }
        }
        if (!isRevoked) {
            applied.Add(permission);
        }
    }
    std::for_each(tried.grants.begin(), tried.grants.end(), [&](const PermissionBase& grant) { applied.Add(grant); });
    return applied.Take();
}

const char* ChangedDetails::GetAttribute(const char* name)
{
    const auto changed = tried.attributes.find(std::string_view(name));
    return changed != tried.attributes.end() ? changed->second.c_str() : original->GetAttribute(name);
}

ChangedSecurityManager::ChangedSecurityManager(SecurityManagerInterface& originalManager,
                                               SMADM_Interface& administrationInterface, ListMatching& listMatching,
                                               WhatIf& triedChanges)
    : SecurityManagerDecorator(originalManager), administration(administrationInterface), matching(listMatching),
      tried(triedChanges), details(triedChanges)
{
}

bool ChangedSecurityManager::Login(SECM_CallBackInterface* callback, bool flag)
{
    changedPermissions.reset();
    userName.clear();
    callback->GetUserName(userName);
    return original.Login(callback, flag);
}

bool ChangedSecurityManager::IsLoggedIn(const char* application)
{
    changedPermissions.reset();
    if (!original.IsLoggedIn(application)) {
        return false;
    }
    UserDetailsInterface* user = original.GetUserDetails();
    if (user == nullptr) {
        throw std::runtime_error("the security manager tells nothing of the user, so no change can be tried");
    }
    RequireAllowed(tried);
    if (tried.ChangesPermissions()) {
        ChangePermissions(*user);
    }
    return true;
}

void ChangedSecurityManager::ChangePermissions(UserDetailsInterface& user)
{
    std::string groupName;
    user.GetGroupName(groupName);
    const std::unique_ptr<PermissionListInterface> list(
        administration.GetPermissionList(groupName.c_str(), userName.c_str()));
    if (!list) {
        throw std::runtime_error("the security manager lists no permissions, so no change can be tried");
    }
    changedPermissions = std::make_unique<ChangedPermissionList>(WithChanges(tried, *list->GetPermissions()));
}

bool ChangedSecurityManager::Logout()
{
    changedPermissions.reset();
    return original.Logout();
}

bool ChangedSecurityManager::CheckPermission(const PermissionBase& permission)
{
    return changedPermissions ? matching.Holds(*changedPermissions, permission) : original.CheckPermission(permission);
}

bool ChangedSecurityManager::GetResources(const std::string& permissionName, unsigned permissionValue,
                                          std::vector<std::string>& resources)
{
    return changedPermissions ? matching.Resources(*changedPermissions, permissionName, permissionValue, resources)
                              : original.GetResources(permissionName, permissionValue, resources);
}

UserDetailsInterface* ChangedSecurityManager::GetUserDetails()
{
    return details.For(original.GetUserDetails());
}

ChangedAdministration::ChangedAdministration(SMADM_Interface& originalInterface, WhatIf& triedChanges)
    : AdministrationDecorator(originalInterface), tried(triedChanges), details(triedChanges)
{
}

UserDetailsInterface* ChangedAdministration::GetUserDetails(const char* domain, const char* userName)
{
    UserDetailsInterface* user = details.For(original.GetUserDetails(domain, userName));
    if (user != nullptr) {
        RequireAllowed(tried);
    }
    return user;
}

PermissionListInterface* ChangedAdministration::GetPermissionList(const char* group, const char* user)
{
    std::unique_ptr<PermissionListInterface> list(original.GetPermissionList(group, user));
    if (list && tried.ChangesPermissions()) {
        list = std::make_unique<ChangedPermissionList>(WithChanges(tried, *list->GetPermissions()));
    }
    return list.release();
}

} // namespace secm::analysis
