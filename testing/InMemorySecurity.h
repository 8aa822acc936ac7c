// A security manager and its administration interface whose users stand in memory.
#pragma once

#include "platform/security_manager/PermissionListInterface.h"
#include "platform/security_manager/SMADM_Interface.h"
#include "platform/security_manager/SecurityManagerInterface.h"
#include "platform/security_manager/UserDetailsInterface.h"

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace secm::testing {

struct User final : UserDetailsInterface {
    User() = default;
    User(std::string ownGroup, std::map<std::string, std::string> ownAttributes, std::vector<PermissionBase> granted)
        : group(std::move(ownGroup)), attributes(std::move(ownAttributes)), permissions(std::move(granted))
    {
    }

    bool GetGroupName(std::string& groupName) override;
    const char* GetAttribute(const char* name) override;

    std::string group;
    std::map<std::string, std::string> attributes;
    std::vector<PermissionBase> permissions; ///< The user's own and the group's, in the order of granting.
};

/// By name. Must outlive the interfaces that answer from it, and nobody changes it while they are asked; then
/// interfaces on different threads may share it.
using Users = std::map<std::string, User, std::less<>>;

class InMemorySecurityManager : public SecurityManagerInterface {
public:
    explicit InMemorySecurityManager(Users& known) : users(known) {}

    bool Initialize(const char*, unsigned, const char*, SECM_CallBackInterface*, bool) override { return true; }
    bool Login(SECM_CallBackInterface* callback, bool flag) override;
    bool IsLoggedIn(const char* application) override;
    bool Logout() override { return std::exchange(user, nullptr) != nullptr; }
    bool CheckPermission(const PermissionBase& sought) override;
    bool GetResources(const std::string& name, unsigned value, std::vector<std::string>& resources) override;
    UserDetailsInterface* GetUserDetails() override { return user; }

    /// For a host that knows its user already; null: nobody.
    void LogIn(User* known) { user = known; }

protected:
    User* user = nullptr; ///< Who is logged in; null: nobody.

private:
    Users& users;
    std::string loginApplication;
};

/// Shows a user's permissions, which must outlive it.
class InMemoryPermissionList : public PermissionListInterface {
public:
    explicit InMemoryPermissionList(const std::vector<PermissionBase>& shown) : permissions(shown) {}
    const std::vector<PermissionBase>* GetPermissions() override { return &permissions; }

private:
    const std::vector<PermissionBase>& permissions;
};

class InMemoryAdministration : public SMADM_Interface {
public:
    explicit InMemoryAdministration(Users& known) : users(known) {}

    bool Initialize(const char*, unsigned, const char*) override { return true; }
    UserDetailsInterface* GetUserDetails(const char* domain, const char* userName) override;
    PermissionListInterface* GetPermissionList(const char* group, const char* userName) override;

protected:
    Users& users;
};

} // namespace secm::testing
