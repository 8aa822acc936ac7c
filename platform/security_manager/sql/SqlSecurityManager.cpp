// The security manager on the security database. A log-in reads everything that a request needs; the questions that
// follow are answered from memory.
#include "platform/security_manager/SecurityManagerInterface.h"

#include "platform/KeptUntilUnload.h"
#include "platform/security_manager/PermissionBase.h"
#include "platform/security_manager/SECM_CallBackInterface.h"
#include "platform/security_manager/SECM_Constants.h"
#include "platform/security_manager/sql/GrantedPermissions.h"
#include "platform/security_manager/sql/HandedOut.h"
#include "platform/security_manager/sql/SecurityDatabase.h"

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace secm::platform {
namespace {

class SqlSecurityManager final : public SecurityManagerInterface {
public:
    bool Initialize(const char* connectionText, unsigned timeoutSeconds, const char* mode,
                    SECM_CallBackInterface* /*callback*/, bool /*flag*/) override
    {
        Forget();
        database = SecurityDatabase::Open("SecurityManagerInterface::Initialize", connectionText, timeoutSeconds, mode);
        return database != nullptr;
    }

    bool Login(SECM_CallBackInterface* callback, bool /*flag*/) override
    {
        Forget();
        if (database == nullptr) {
            throw std::runtime_error("SecurityManagerInterface::Login: not initialized");
        }
        std::string userName;
        if (callback == nullptr || !callback->GetUserName(userName)) {
            throw std::runtime_error("SecurityManagerInterface::Login: nobody says which user");
        }
        if (userName.find('\0') != std::string::npos) {
            throw std::runtime_error("SecurityManagerInterface::Login: the user name holds a NUL byte");
        }
        applicationName.clear();
        callback->GetApplicationName(applicationName);
        // Every security manager asks for these. This one grants the same from every address.
        std::string unused;
        bool unusedFlag = false;
        callback->GetAuxiliaryText(unused, unusedFlag);
        callback->GetIpAddress(unused);

        auto found = database->ReadUser<GrantedPermissions>("SecurityManagerInterface::Login", userName);
        if (found && IsOwnGroup(callback, &SECM_CallBackInterface::GetGroup, found->user) &&
            IsOwnGroup(callback, &SECM_CallBackInterface::GetSecondGroup, found->user)) {
            permissions = std::move(found->permissions);
            permissions.ShrinkToFit();
            details.emplace(std::move(found->user));
        }
        return details.has_value();
    }

    bool IsLoggedIn(const char* application) override
    {
        return details && application != nullptr && applicationName == application;
    }

    bool Logout() override
    {
        const bool wasLoggedIn = details.has_value();
        Forget();
        return wasLoggedIn;
    }

    bool CheckPermission(const PermissionBase& permission) override
    {
        if (!details) {
            return false;
        }
        if (const auto granted = permissions.FirstEqual(permission)) {
            return permission <= *granted;
        }
        if (permission.resource() == nullptr) {
            return false;
        }
        const PermissionBase fallback(permission.name(), permission.value(), defaultResource,
                                      permission.IsConditional());
        const auto granted = permissions.FirstEqual(fallback);
        return granted && fallback <= *granted;
    }

    bool GetResources(const std::string& permissionName, unsigned permissionValue,
                      std::vector<std::string>& resources) override
    {
        if (!details) {
            return false;
        }
        permissions.AppendResources(permissionName, permissionValue, resources);
        return true;
    }

    UserDetailsInterface* GetUserDetails() override { return details ? &*details : nullptr; }

private:
    void Forget()
    {
        details.reset();
        permissions = {};
    }

    // Whether the group that the callback names is the user's, or it names none.
    static bool IsOwnGroup(SECM_CallBackInterface* callback, bool (SECM_CallBackInterface::*getGroup)(std::string&),
                           const SecurityUser& user)
    {
        std::string group;
        return !(callback->*getGroup)(group) || group == noGroup || group == user.groupName;
    }

    std::unique_ptr<SecurityDatabase> database;
    std::string applicationName;
    std::optional<SqlUserDetails> details; // while a user is logged in
    GrantedPermissions permissions;        // of that user
};

HandedOut<SecurityManagerInterface>& Managers()
{
    static auto& managers = KeptUntilUnload<HandedOut<SecurityManagerInterface>>();
    return managers;
}

} // namespace
} // namespace secm::platform

SecurityManagerInterface* getSecurityManagerInterface(const char* /*applicationName*/, unsigned interfaceVersion)
{
    using namespace secm::platform;
    return interfaceVersion == securityManagerVersion ? Managers().Keep(std::make_unique<SqlSecurityManager>())
                                                      : nullptr;
}

void releaseSecurityManagerInterface(SecurityManagerInterface* securityManager)
{
    secm::platform::Managers().Release(securityManager);
}
