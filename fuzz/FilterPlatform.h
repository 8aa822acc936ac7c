// The platform as a case says that it is.
#pragma once

#include "fuzz/FilterCase.h"
#include "platform/security_manager/PermissionBase.h"
#include "platform/security_manager/PermissionListInterface.h"
#include "platform/security_manager/UserDetailsInterface.h"

class SecurityManagerInterface;

/// What all of the platform looks at; the fuzzer sets it.
struct Stage {
    const Case* world = nullptr;
    const Request* request = nullptr;
    const User* loggedIn = nullptr;
    unsigned resourceQueries = 0;
    unsigned detailQueries = 0;
    std::vector<std::string> journal; ///< As the model writes it.
};
extern Stage stage;

class UserDetails : public UserDetailsInterface {
public:
    bool GetGroupName(std::string& groupName) override;
    const char* GetAttribute(const char* name) override;

    const User* user = nullptr;
};

class PermissionList : public PermissionListInterface {
public:
    explicit PermissionList(const std::vector<Grant>& grants);
    const std::vector<PermissionBase>* GetPermissions() override { return &permissions; }

private:
    std::vector<PermissionBase> permissions;
};

PermissionBase PermissionOf(const Grant& grant);

/// One in which `user` is logged in; none when it is null.
SecurityManagerInterface* OwnSecurityManager(const User* user);
