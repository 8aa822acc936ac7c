// Decorators of the security manager's interfaces: they pass every call on and report the answers to a recorder. What
// their constructors take must outlive them.
#pragma once

#include "platform/security_manager/SMADM_Interface.h"
#include "platform/security_manager/SecurityManagerInterface.h"
#include "platform/security_manager/UserDetailsInterface.h"

#include <string>
#include <vector>

namespace secm::analysis {

class TraceRecorder;

/// Stands for one user at a time. Valid as long as that user.
class TracedDetails final : public UserDetailsInterface {
public:
    explicit TracedDetails(TraceRecorder& traceRecorder) : recorder(traceRecorder) {}

    /// This object, which from now on stands for `user`; null when `user` is null.
    UserDetailsInterface* For(UserDetailsInterface* user);

    bool GetGroupName(std::string& groupName) override { return original->GetGroupName(groupName); }
    const char* GetAttribute(const char* name) override;

private:
    TraceRecorder& recorder;
    UserDetailsInterface* original = nullptr;
};

class TracedSecurityManager final : public SecurityManagerInterface {
public:
    TracedSecurityManager(SecurityManagerInterface& originalManager, TraceRecorder& traceRecorder);

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
    SecurityManagerInterface& original;
    TraceRecorder& recorder;
    TracedDetails details;
};

class TracedAdministration final : public SMADM_Interface {
public:
    TracedAdministration(SMADM_Interface& originalInterface, TraceRecorder& traceRecorder);

    bool Initialize(const char* connectionText, unsigned timeoutSeconds, const char* mode) override;
    UserDetailsInterface* GetUserDetails(const char* domain, const char* userName) override;
    PermissionListInterface* GetPermissionList(const char* group, const char* user) override;

private:
    SMADM_Interface& original;
    TraceRecorder& recorder;
    TracedDetails details;
};

} // namespace secm::analysis
