// Stand between the module and the security manager and answer as if the changes that are tried were stored.
#pragma once

#include "analysis/trace/WhatIf.h"
#include "platform/security_manager/PermissionListInterface.h"
#include "platform/security_manager/SMADM_Interface.h"
#include "platform/security_manager/SecurityManagerInterface.h"
#include "platform/security_manager/UserDetailsInterface.h"

#include <memory>
#include <string>
#include <vector>

namespace secm::analysis {

/// A user's permissions as they would be: without what is revoked, and with what is granted behind the others. Counts
/// in `tried` what each revocation takes away.
std::vector<PermissionBase> Applied(WhatIf& tried, const std::vector<PermissionBase>& permissions);

/// How the module answers from a permission list what a security manager answers of a user who is logged in.
class ListMatching {
public:
    virtual bool Holds(PermissionListInterface& list, const PermissionBase& permission) = 0;
    virtual bool Resources(PermissionListInterface& list, const std::string& permissionName, unsigned permissionValue,
                           std::vector<std::string>& resources) = 0;

protected:
    ~ListMatching() = default;
};

/// A user with the attributes that are tried. The user whom it stands for stays the security manager's.
class ChangedDetails final : public UserDetailsInterface {
public:
    explicit ChangedDetails(const WhatIf& triedChanges) : tried(triedChanges) {}

    /// What stands for `user`; null for null.
    UserDetailsInterface* For(UserDetailsInterface* user);

    bool GetGroupName(std::string& groupName) override { return original->GetGroupName(groupName); }
    const char* GetAttribute(const char* name) override;

private:
    const WhatIf& tried;
    UserDetailsInterface* original = nullptr;
};

/// The security manager is passed on to `original`, apart from the user's attributes and permissions. All that the
/// constructor takes must live as long. Logging a user in throws std::runtime_error when the changes cannot be tried or
/// when a request would refuse them.
class ChangedSecurityManager final : public SecurityManagerInterface {
public:
    ChangedSecurityManager(SecurityManagerInterface& originalManager, SMADM_Interface& administrationInterface,
                           ListMatching& listMatching, WhatIf& triedChanges);

    bool Initialize(const char* connectionText, unsigned timeoutSeconds, const char* mode,
                    SECM_CallBackInterface* callback, bool flag) override;
    bool Login(SECM_CallBackInterface* callback, bool flag) override;
    bool IsLoggedIn(const char* application) override;
    bool Logout() override;
    bool CheckPermission(const PermissionBase& permission) override;
    bool GetResources(const std::string& permissionName, unsigned permissionValue,
                      std::vector<std::string>& resources) override;
    UserDetailsInterface* GetUserDetails() override;

private:
    void ChangePermissions(UserDetailsInterface& user);

    SecurityManagerInterface& original;
    SMADM_Interface& administration; // gives the same permissions, as a list
    ListMatching& matching;
    WhatIf& tried;
    ChangedDetails details;
    std::string userName;                                        // at the last log-in
    std::unique_ptr<PermissionListInterface> changedPermissions; // null: permissions are not changed
};

/// The same for users who are asked for by name.
class ChangedAdministration final : public SMADM_Interface {
public:
    ChangedAdministration(SMADM_Interface& originalInterface, WhatIf& triedChanges);

    bool Initialize(const char* connectionText, unsigned timeoutSeconds, const char* mode) override;
    UserDetailsInterface* GetUserDetails(const char* domain, const char* userName) override;
    PermissionListInterface* GetPermissionList(const char* group, const char* user) override;

private:
    SMADM_Interface& original;
    WhatIf& tried;
    ChangedDetails details;
};

} // namespace secm::analysis
