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

std::string GroupNameOf(UserDetailsInterface& user)
{
    std::string groupName;
    user.GetGroupName(groupName);
    return groupName;
}

// Notes in `tried` whether the changes concern this user.
void Apply(WhatIf& tried, const std::string& userName, const std::string& groupName)
{
    tried.isApplied = !tried.grantee || (tried.grantee->isGroup ? !groupName.empty() && tried.grantee->name == groupName
                                                                : tried.grantee->name == userName);
    if (tried.isApplied) {
        RequireAllowed(tried);
    }
}

bool IsSame(const PermissionBase& one, const PermissionBase& other)
{
    return one == other && one.value() == other.value() && one.IsConditional() == other.IsConditional();
}

// The permissions of a user with the changes of one of the two who have grants: the user or the group. `ofGrantee` is
// granted to that one, `ofOther` to the other one.
std::vector<PermissionBase> WithChangesOf(WhatIf& tried, const std::vector<PermissionBase>& permissions,
                                          std::vector<PermissionBase> ofGrantee,
                                          const std::vector<PermissionBase>& ofOther)
{
    WhatIf grants = tried;
    grants.revocations.clear();
    WhatIf revocations = tried;
    revocations.grants.clear();
    static_cast<void>(WithChanges(revocations, ofGrantee)); // counts
    tried.revocations = revocations.revocations;
    std::erase_if(ofGrantee, [&](const PermissionBase& permission) { return !IsRevoked(tried, permission); });
    std::vector<PermissionBase> left;
    for (const PermissionBase& permission : permissions) {
        const auto revoked = std::find_if(ofGrantee.begin(), ofGrantee.end(), [&](const PermissionBase& each) {
            return permission.resource() == nullptr ? each == permission : IsSame(each, permission);
        });
        if (revoked == ofGrantee.end()) {
            left.push_back(permission);
            continue;
        }
        ofGrantee.erase(revoked);
        // What the two hold outright is one permission, of which the other's part stays.
        const auto other = std::find(ofOther.begin(), ofOther.end(), permission);
        if (permission.resource() == nullptr && other != ofOther.end()) {
            left.push_back(*other);
        }
    }
    return WithChanges(grants, left);
}

// Reads the permissions of the user and of the group each for itself when only those of one of them change.
std::unique_ptr<PermissionListInterface> ChangedList(SMADM_Interface& administration, WhatIf& tried,
                                                     const std::string& groupName, const std::string& userName,
                                                     const std::vector<PermissionBase>& permissions)
{
    if (!tried.grantee) {
        return std::make_unique<ChangedPermissionList>(WithChanges(tried, permissions));
    }
    const std::unique_ptr<PermissionListInterface> ofGroup(administration.GetPermissionList(groupName.c_str(), ""));
    const std::unique_ptr<PermissionListInterface> ofUser(administration.GetPermissionList("", userName.c_str()));
    if (!ofGroup || !ofUser) {
        throw std::runtime_error("the security manager lists no permissions, so no change can be tried");
    }
    const auto& [ofGrantee, ofOther] =
        tried.grantee->isGroup ? std::pair(ofGroup.get(), ofUser.get()) : std::pair(ofUser.get(), ofGroup.get());
    return std::make_unique<ChangedPermissionList>(
        WithChangesOf(tried, permissions, *ofGrantee->GetPermissions(), *ofOther->GetPermissions()));
}

} // namespace

bool IsRevoked(const WhatIf& tried, const PermissionBase& permission)
{
    return std::any_of(tried.revocations.begin(), tried.revocations.end(), [&](const WhatIf::Revocation& revocation) {
        return IsRevokedBy(revocation.permission, permission);
    });
}

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
    return tried.isApplied && changed != tried.attributes.end() ? changed->second.c_str()
                                                                : original->GetAttribute(name);
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
        throw std::runtime_error("the security manager gives no details of the user, so no change can be tried");
    }
    const std::string groupName = GroupNameOf(*user);
    Apply(tried, userName, groupName);
    if (tried.isApplied && tried.ChangesPermissions()) {
        ChangePermissions(groupName);
    }
    return true;
}

void ChangedSecurityManager::ChangePermissions(const std::string& groupName)
{
    const std::unique_ptr<PermissionListInterface> list(
        administration.GetPermissionList(groupName.c_str(), userName.c_str()));
    if (!list) {
        throw std::runtime_error("the security manager lists no permissions, so no change can be tried");
    }
    changedPermissions = ChangedList(administration, tried, groupName, userName, *list->GetPermissions());
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
    UserDetailsInterface* user = original.GetUserDetails(domain, userName);
    if (user != nullptr) {
        Apply(tried, userName, GroupNameOf(*user));
    }
    return details.For(user);
}

PermissionListInterface* ChangedAdministration::GetPermissionList(const char* group, const char* user)
{
    std::unique_ptr<PermissionListInterface> list(original.GetPermissionList(group, user));
    if (list && tried.isApplied && tried.ChangesPermissions()) {
        list = ChangedList(original, tried, group, user, *list->GetPermissions());
    }
    return list.release();
}

} // namespace secm::analysis
