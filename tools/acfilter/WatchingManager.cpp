#include "tools/acfilter/WatchingManager.h"

#include "platform/security_manager/PermissionListInterface.h"
#include "platform/security_manager/SMADM_Interface.h"
#include "platform/security_manager/SecurityManagerInterface.h"
#include "platform/security_manager/UserDetailsInterface.h"

#include <stdexcept>

namespace {

class ChangedPermissionList final : public PermissionListInterface {
public:
    explicit ChangedPermissionList(std::vector<PermissionBase> changed) : permissions(std::move(changed)) {}
    const std::vector<PermissionBase>* GetPermissions() override { return &permissions; }

private:
    std::vector<PermissionBase> permissions;
};

} // namespace

class WatchingManager::WatchedDetails final : public UserDetailsInterface {
public:
    explicit WatchedDetails(WatchingManager& watchingManager) : manager(watchingManager) {}

    /// What stands for `watched`; null for null.
    UserDetailsInterface* Watch(UserDetailsInterface* watched)
    {
        original = watched;
        return original != nullptr ? this : nullptr;
    }

    bool GetGroupName(std::string& groupName) override { return original->GetGroupName(groupName); }

    const char* GetAttribute(const char* name) override
    {
        const auto tried = manager.whatIf.attributes.find(std::string_view(name));
        const char* value =
            tried != manager.whatIf.attributes.end() ? tried->second.c_str() : original->GetAttribute(name);
        manager.NoticeAttribute(name, value);
        return value;
    }

private:
    WatchingManager& manager;
    UserDetailsInterface* original = nullptr;
};

class WatchingManager::WatchedSecurityManager final : public SecurityManagerInterface {
public:
    WatchedSecurityManager(WatchingManager& watchingManager, SecurityManagerInterface& watched)
        : manager(watchingManager), original(watched)
    {
    }

    bool Initialize(const char* connectionText, unsigned timeoutSeconds, const char* mode,
                    SECM_CallBackInterface* callback, bool flag) override
    {
        return original.Initialize(connectionText, timeoutSeconds, mode, callback, flag);
    }

    bool Login(SECM_CallBackInterface* callback, bool flag) override { return original.Login(callback, flag); }

    bool IsLoggedIn(const char* application) override
    {
        const bool isLoggedIn = original.IsLoggedIn(application);
        manager.isKnown = isLoggedIn;
        UserDetailsInterface* user = isLoggedIn ? GetUserDetails() : nullptr;
        manager.NoticeUser(user);
        changedList.reset();
        if (isLoggedIn && user == nullptr && !manager.whatIf.IsEmpty()) {
            throw std::runtime_error("the security manager tells nothing of the user, so no change can be tried");
        }
        if (user != nullptr && manager.whatIf.ChangesPermissions()) {
            // The two roads give the same permissions, and only the other one gives them as a list.
            std::string groupName;
            user->GetGroupName(groupName);
            changedList.reset(
                manager.adminInterface->GetPermissionList(groupName.c_str(), manager.callback.userName.c_str()));
            if (!changedList) {
                throw std::runtime_error("the security manager lists no permissions, so no change can be tried");
            }
        }
        return isLoggedIn;
    }

    bool Logout() override { return original.Logout(); }

    bool CheckPermission(const PermissionBase& permission) override
    {
        if (changedList) {
            return manager.CheckPermissionInList(changedList.get(), permission);
        }
        const bool isHeld = original.CheckPermission(permission);
        manager.NoticeField(isHeld);
        return isHeld;
    }

    bool GetResources(const std::string& permissionName, unsigned permissionValue,
                      std::vector<std::string>& resources) override
    {
        if (changedList) {
            return manager.GetResourcesFromList(changedList.get(), permissionName, permissionValue, resources);
        }
        const bool areTold = original.GetResources(permissionName, permissionValue, resources);
        manager.NoticeResources(areTold, resources);
        return areTold;
    }

    UserDetailsInterface* GetUserDetails() override { return manager.watchedDetails->Watch(original.GetUserDetails()); }

private:
    WatchingManager& manager;
    SecurityManagerInterface& original;
    std::unique_ptr<PermissionListInterface> changedList; // only while changes are tried
};

class WatchingManager::WatchedAdministration final : public SMADM_Interface {
public:
    WatchedAdministration(WatchingManager& watchingManager, SMADM_Interface& watched)
        : manager(watchingManager), original(watched)
    {
    }

    bool Initialize(const char* connectionText, unsigned timeoutSeconds, const char* mode) override
    {
        return original.Initialize(connectionText, timeoutSeconds, mode);
    }

    UserDetailsInterface* GetUserDetails(const char* domain, const char* userName) override
    {
        UserDetailsInterface* user = manager.watchedDetails->Watch(original.GetUserDetails(domain, userName));
        manager.isKnown = user != nullptr;
        manager.NoticeUser(user);
        return user;
    }

    PermissionListInterface* GetPermissionList(const char* group, const char* user) override
    {
        std::unique_ptr<PermissionListInterface> list(original.GetPermissionList(group, user));
        manager.wouldHideAll = list == nullptr;
        if (list && manager.whatIf.ChangesPermissions()) {
            list = std::make_unique<ChangedPermissionList>(manager.whatIf.Applied(*list->GetPermissions()));
        }
        return list.release();
    }

private:
    WatchingManager& manager;
    SMADM_Interface& original;
};

const char* NameOf(Outcome outcome)
{
    switch (outcome) {
    case Outcome::unrestricted:
        return "unrestricted";
    case Outcome::restricted:
        return "restricted";
    case Outcome::hideAll:
        return "hide-all";
    default:
        return "default";
    }
}

WatchingManager::WatchingManager(const std::string& repository, WhatIf tried)
    : SECM_AccessControlManager(repository), whatIf(std::move(tried)),
      watchedDetails(std::make_unique<WatchedDetails>(*this))
{
}

WatchingManager::~WatchingManager() = default;

bool WatchingManager::InitSecurityConnection(const char* connectionText, unsigned connectionValue)
{
    const bool isConnected = SECM_AccessControlManager::InitSecurityConnection(connectionText, connectionValue);
    if (isConnected) {
        watchedSecurityManager = std::make_unique<WatchedSecurityManager>(*this, *securityManager);
        securityManager = watchedSecurityManager.get();
        watchedAdministration = std::make_unique<WatchedAdministration>(*this, *adminInterface);
        adminInterface = watchedAdministration.get();
    }
    return isConnected;
}

Answer WatchingManager::Ask(const Request& request)
{
    isKnown = false;
    wouldHideAll = false;
    for (WhatIf::Revocation& revocation : whatIf.revocations) {
        revocation.revoked = 0;
    }
    std::string filter = request.withoutLogin ? GetAccessControlFilter(request.userName)
                                              : GetAccessControlFilter(request.userName, request.ipAddress);
    if (!isKnown) {
        return {std::move(filter), Outcome::unknownUser};
    }
    if (wouldHideAll) {
        return {std::move(filter), Outcome::hideAll};
    }
    const Outcome outcome = filter.empty() ? Outcome::unrestricted : Outcome::restricted;
    return {std::move(filter), outcome};
}

void WatchingManager::NoticeUser(UserDetailsInterface* /*user*/) {}

// A field that is not held hides everything until its conditions are asked for their texts: every definition has one.
void WatchingManager::NoticeField(bool isHeld)
{
    wouldHideAll = !isHeld;
}

void WatchingManager::NoticeResources(bool /*areTold*/, const std::vector<std::string>& /*resources*/) {}

void WatchingManager::NoticeAttribute(const char* /*name*/, const char* /*value*/) {}

std::string WatchingManager::HandleSingleConditionForUser(const ConditionDefinition& condition,
                                                          const std::vector<std::string>& values,
                                                          UserDetailsInterface* userDetails)
{
    wouldHideAll = false;
    return SECM_AccessControlManager::HandleSingleConditionForUser(condition, values, userDetails);
}

std::string WatchingManager::HandleSingleCondition(const ConditionDefinition& condition,
                                                   const std::vector<std::string>& values,
                                                   SecurityManagerInterface* secmInterface)
{
    wouldHideAll = false;
    return SECM_AccessControlManager::HandleSingleCondition(condition, values, secmInterface);
}

bool WatchingManager::CheckPermissionInList(PermissionListInterface* permissionList, const PermissionBase& permission)
{
    const bool isHeld = SECM_AccessControlManager::CheckPermissionInList(permissionList, permission);
    NoticeField(isHeld);
    return isHeld;
}

bool WatchingManager::GetResourcesFromList(PermissionListInterface* permissionList, const std::string& permissionName,
                                           unsigned permissionValue, std::vector<std::string>& resources)
{
    const bool areTold =
        SECM_AccessControlManager::GetResourcesFromList(permissionList, permissionName, permissionValue, resources);
    NoticeResources(areTold, resources);
    return areTold;
}
