// A security manager and its administration interface without a database: what they cost is little, and the same for
// every request.
#pragma once

#include "bench/CountedAllocation.h"
#include "platform/security_manager/PermissionListInterface.h"
#include "platform/security_manager/SMADM_Interface.h"
#include "platform/security_manager/SecurityManagerInterface.h"
#include "platform/security_manager/UserDetailsInterface.h"

#include <array>
#include <string>
#include <vector>

struct InMemoryUser final : UserDetailsInterface {
    bool GetGroupName(std::string& groupName) override
    {
        groupName = "group";
        return true;
    }
    const char* GetAttribute(const char*) override { return "site0001"; }

    std::vector<PermissionBase> permissions;
    std::array<std::vector<std::string>, 100> resources; // by the number of the field; none: held outright
};

class InMemorySecurityManager final : public SecurityManagerInterface {
public:
    explicit InMemorySecurityManager(InMemoryUser& onlyUser) : user(onlyUser)
    {
        for (const PermissionBase& permission : user.permissions) {
            std::vector<std::string>& resources = user.resources[FieldOf(permission.name())];
            if (permission.resource() != nullptr) {
                resources.emplace_back(permission.resource());
            }
        }
    }

    bool Initialize(const char*, unsigned, const char*, SECM_CallBackInterface*, bool) override { return true; }
    bool Login(SECM_CallBackInterface*, bool) override { return true; }
    bool IsLoggedIn(const char*) override { return true; }
    bool Logout() override { return true; }
    bool CheckPermission(const PermissionBase& sought) override
    {
        return user.resources[FieldOf(sought.name())].empty();
    }
    bool GetResources(const std::string& name, unsigned, std::vector<std::string>& resources) override
    {
        const SecurityManagerAllocates counted;
        const std::vector<std::string>& found = user.resources[FieldOf(name.c_str())];
        resources.insert(resources.end(), found.begin(), found.end());
        return true;
    }
    UserDetailsInterface* GetUserDetails() override { return &user; }

private:
    // Of the workload's permissions f01, f02 ...
    static std::size_t FieldOf(const char* permission)
    {
        return static_cast<std::size_t>(permission[1] - '0') * 10 + static_cast<std::size_t>(permission[2] - '0');
    }

    InMemoryUser& user;
};

class InMemoryAdministration final : public SMADM_Interface {
public:
    explicit InMemoryAdministration(InMemoryUser& onlyUser) : user(onlyUser) {}

    bool Initialize(const char*, unsigned, const char*) override { return true; }
    UserDetailsInterface* GetUserDetails(const char*, const char*) override { return &user; }
    PermissionListInterface* GetPermissionList(const char*, const char*) override
    {
        const SecurityManagerAllocates counted;
        return new List(user);
    }

private:
    struct List final : PermissionListInterface {
        explicit List(InMemoryUser& ofUser) : user(ofUser) {}
        const std::vector<PermissionBase>* GetPermissions() override { return &user.permissions; }
        InMemoryUser& user;
    };

    InMemoryUser& user;
};
