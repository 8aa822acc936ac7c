// The security manager on the security database. Everything a request needs is read at log-in; the questions
// that follow are answered from memory.
#include "platform/security_manager/SecurityManagerInterface.h"

#include "platform/KeptUntilUnload.h"
#include "platform/security_manager/SECM_CallBackInterface.h"
#include "platform/security_manager/sql/GrantedPermissions.h"
#include "platform/security_manager/sql/HandedOut.h"
#include "platform/security_manager/sql/SecurityDatabase.h"

#include <optional>
#include <stdexcept>

namespace {

constexpr unsigned servedVersion = 0x11010A17;
constexpr const char* noGroupMarker = "$$$NO_GROUP$$$";
constexpr const char* defaultResource = "default";

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
        // Asked for as by any security manager; this one grants the same from every address.
        std::string unused;
        bool unusedFlag = false;
        callback->GetAuxiliaryText(unused, unusedFlag);
        callback->GetIpAddress(unused);

        auto found = database->ReadUser<GrantedPermissions>(userName);
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

    // A user logs in with their own group, or without naming one.
    static bool IsOwnGroup(SECM_CallBackInterface* callback, bool (SECM_CallBackInterface::*getGroup)(std::string&),
                           const SecurityUser& user)
    {
        std::string group;
        return !(callback->*getGroup)(group) || group == noGroupMarker || group == user.groupName;
    }

    std::unique_ptr<SecurityDatabase> database;
    std::string applicationName;
    std::optional<SqlUserDetails> details; // while a user is logged in
    GrantedPermissions permissions;        // of that user
};

HandedOut<SecurityManagerInterface>& Managers()
{
    static auto& managers = secm::platform::KeptUntilUnload<HandedOut<SecurityManagerInterface>>();
    return managers;
}

} // namespace

SecurityManagerInterface* getSecurityManagerInterface(const char* /*applicationName*/, unsigned interfaceVersion)
{
    return interfaceVersion == servedVersion ? Managers().Keep(std::make_unique<SqlSecurityManager>()) : nullptr;
}

void releaseSecurityManagerInterface(SecurityManagerInterface* securityManager)
{
    Managers().Release(securityManager);
}
