// Decorators of the security manager's interfaces: they answer as if the changes that are tried were stored.
#pragma once

#include "analysis/trace/SecurityManagerDecorators.h"
#include "analysis/trace/WhatIf.h"
#include "platform/security_manager/PermissionListInterface.h"

#include <memory>
#include <string>
#include <vector>

namespace secm::analysis {

/// `permissions` without those that are revoked, followed by those that are granted. A grant without a resource adds
/// its bits to the permission of the same name that is held without a resource, as a security database adds them up.
/// Sets in `tried` how many each revocation takes away.
std::vector<PermissionBase> WithChanges(WhatIf& tried, const std::vector<PermissionBase>& permissions);

/// Whether one of the revocations names `permission`.
bool IsRevoked(const WhatIf& tried, const PermissionBase& permission);

/// Decides from a permission list as the module does for requests by name.
class ListMatching {
public:
    virtual bool Holds(PermissionListInterface& list, const PermissionBase& permission) = 0;
    virtual bool Resources(PermissionListInterface& list, const std::string& permissionName, unsigned permissionValue,
                           std::vector<std::string>& resources) = 0;

protected:
    ~ListMatching() = default;
};

/// A user with the attributes that are tried.
class ChangedDetails final : public UserDetailsDecorator {
public:
    explicit ChangedDetails(const WhatIf& triedChanges) : tried(triedChanges) {}

    const char* GetAttribute(const char* name) override;

private:
    const WhatIf& tried; // for this user only while isApplied is set
};

/// Passes every call on to `original`, apart from questions about the user's attributes and permissions. IsLoggedIn
/// throws std::runtime_error when the changes cannot be tried, or when a request would refuse them.
class ChangedSecurityManager final : public SecurityManagerDecorator {
public:
    ChangedSecurityManager(SecurityManagerInterface& originalManager, SMADM_Interface& administrationInterface,
                           ListMatching& listMatching, WhatIf& triedChanges);

    bool Login(SECM_CallBackInterface* callback, bool flag) override;
    bool IsLoggedIn(const char* application) override;
    bool Logout() override;
    bool CheckPermission(const PermissionBase& permission) override;
    bool GetResources(const std::string& permissionName, unsigned permissionValue,
                      std::vector<std::string>& resources) override;
    UserDetailsInterface* GetUserDetails() override;

private:
    void ChangePermissions(const std::string& groupName);

    SMADM_Interface& administration; // gives the permissions of the user who is logged in as a list
    ListMatching& matching;
    WhatIf& tried;
    ChangedDetails details;
    std::string userName;                                        // at the last log-in
    std::unique_ptr<PermissionListInterface> changedPermissions; // null: permissions are not changed
};

/// The same for requests by name. GetUserDetails throws when a request would refuse the changes.
class ChangedAdministration final : public AdministrationDecorator {
public:
    ChangedAdministration(SMADM_Interface& originalInterface, WhatIf& triedChanges);

    UserDetailsInterface* GetUserDetails(const char* domain, const char* userName) override;
    PermissionListInterface* GetPermissionList(const char* group, const char* user) override;

private:
    WhatIf& tried;
    ChangedDetails details;
};

} // namespace secm::analysis
