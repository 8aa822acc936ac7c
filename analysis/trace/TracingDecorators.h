// Decorators of the security manager's interfaces: they pass every call on and report the answers to a recorder.
#pragma once

#include "analysis/trace/SecurityManagerDecorators.h"

#include <string>
#include <vector>

namespace secm::analysis {

class TraceRecorder;

class TracedDetails final : public UserDetailsDecorator {
public:
    explicit TracedDetails(TraceRecorder& traceRecorder) : recorder(traceRecorder) {}

    const char* GetAttribute(const char* name) override;

private:
    TraceRecorder& recorder;
};

class TracedSecurityManager final : public SecurityManagerDecorator {
public:
    TracedSecurityManager(SecurityManagerInterface& originalManager, TraceRecorder& traceRecorder);

    bool IsLoggedIn(const char* application) override;
    bool CheckPermission(const PermissionBase& permission) override;
    bool GetResources(const std::string& permissionName, unsigned permissionValue,
                      std::vector<std::string>& resources) override;
    UserDetailsInterface* GetUserDetails() override;

private:
    TraceRecorder& recorder;
    TracedDetails details;
};

class TracedAdministration final : public AdministrationDecorator {
public:
    TracedAdministration(SMADM_Interface& originalInterface, TraceRecorder& traceRecorder);

    UserDetailsInterface* GetUserDetails(const char* domain, const char* userName) override;
    PermissionListInterface* GetPermissionList(const char* group, const char* user) override;

private:
    TraceRecorder& recorder;
    TracedDetails details;
};

} // namespace secm::analysis
