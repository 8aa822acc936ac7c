// What the decorators of the security manager's interfaces share: they pass on what they do not change. What their
// constructors take must outlive them.
#pragma once

#include "platform/security_manager/SMADM_Interface.h"
#include "platform/security_manager/SecurityManagerInterface.h"
#include "platform/security_manager/UserDetailsInterface.h"

#include <string>

namespace secm::analysis {

/// Stands for one user at a time. Valid as long as that user.
class UserDetailsDecorator : public UserDetailsInterface {
public:
    /// This object, which from now on stands for `user`; null when `user` is null.
    UserDetailsInterface* For(UserDetailsInterface* user)
    {
        original = user;
        return original != nullptr ? this : nullptr;
    }

    bool GetGroupName(std::string& groupName) override { return original->GetGroupName(groupName); }

protected:
    ~UserDetailsDecorator() = default;

    UserDetailsInterface* original = nullptr;
};

class SecurityManagerDecorator : public SecurityManagerInterface {
public:
    explicit SecurityManagerDecorator(SecurityManagerInterface& originalManager) : original(originalManager) {}

    bool Initialize(const char* connectionText, unsigned timeoutSeconds, const char* mode,
                    SECM_CallBackInterface* callback, bool flag) override
    {
        return original.Initialize(connectionText, timeoutSeconds, mode, callback, flag);
    }

    bool Login(SECM_CallBackInterface* callback, bool flag) override { return original.Login(callback, flag); }
    bool Logout() override { return original.Logout(); }

protected:
    SecurityManagerInterface& original;
};

class AdministrationDecorator : public SMADM_Interface {
public:
    explicit AdministrationDecorator(SMADM_Interface& originalInterface) : original(originalInterface) {}

    bool Initialize(const char* connectionText, unsigned timeoutSeconds, const char* mode) override
    {
        return original.Initialize(connectionText, timeoutSeconds, mode);
    }

protected:
    SMADM_Interface& original;
};

} // namespace secm::analysis
