// Stand between the module and the security manager, pass everything on, and report the answers to a recorder.
#pragma once

#include "platform/security_manager/SMADM_Interface.h"
#include "platform/security_manager/SecurityManagerInterface.h"
#include "platform/security_manager/UserDetailsInterface.h"

#include <string>
#include <vector>

namespace secm::analysis {

class TraceRecorder;

/// All that the constructors take must live as long as the objects.
class TracedDetails final : public UserDetailsInterface {
public:
    explicit TracedDetails(TraceRecorder& traceRecorder) : recorder(traceRecorder) {}

    /// What stands for `user`; null for null.
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
