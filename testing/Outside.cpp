#include "testing/Outside.h"

#include "platform/logging/Tmr_LogFile.h"
#include "platform/security_manager/SECM_CallBackInterface.h"

#include <cstdarg>
#include <cstdio>

Tmr_LogFile TmrGLog;

namespace secm::testing {

Outside outside;

namespace {

// Where the announced message comes from.
int announcedLevel = 0;
std::string announcedFunction;

class RecordedDetails final : public UserDetailsInterface {
public:
    bool GetGroupName(std::string& groupName) override
    {
        outside.calls.Ask("GetGroupName '", groupName, "'");
        user->GetGroupName(groupName);
        return false; // the module must not use the result
    }
    const char* GetAttribute(const char* name) override
    {
        outside.calls.Ask("GetAttribute ", name);
        return user->GetAttribute(name);
    }

    // Null for null, and when the details are refused.
    UserDetailsInterface* Of(UserDetailsInterface* described)
    {
        user = described;
        return described != nullptr && !outside.userDetails.IsNext() ? this : nullptr;
    }

private:
    UserDetailsInterface* user = nullptr;
};

class RecordedSecurityManager : public InMemorySecurityManager {
public:
    using InMemorySecurityManager::InMemorySecurityManager;

    bool Initialize(const char* text, unsigned value, const char* mode, SECM_CallBackInterface* callback,
                    bool flag) override
    {
        std::string application;
        Require(callback->GetApplicationName(application) && !flag, "wrong arguments of Initialize");
        outside.calls.Ask("Initialize ", text, " ", value, " ", mode, " ", application);
        return outside.securityManager == Offer::connects;
    }
    bool Login(SECM_CallBackInterface* callback, bool flag) override
    {
        bool auxiliaryFlag = true;
        std::string application = "?", name = "?", auxiliary = "?", group = "?", second = "?", address = "?";
        Require(callback->GetApplicationName(application) && callback->GetUserName(name) &&
                    callback->GetAuxiliaryText(auxiliary, auxiliaryFlag) && callback->GetGroup(group) &&
                    callback->GetSecondGroup(second) && callback->GetIpAddress(address) && !auxiliaryFlag && !flag,
                "wrong answers of the callback, or arguments of Login");
        outside.calls.Do("Login ", application, "|", name, "|", auxiliary, "|", group, "|", second, "|", address);
        InMemorySecurityManager::Login(callback, flag);
        return false; // the module must not use the result
    }
    bool IsLoggedIn(const char* application) override
    {
        outside.calls.Ask("IsLoggedIn ", application);
        return InMemorySecurityManager::IsLoggedIn(application);
    }
    bool Logout() override
    {
        outside.calls.Do("Logout");
        return InMemorySecurityManager::Logout();
    }
    bool CheckPermission(const PermissionBase& sought) override
    {
        outside.calls.Ask("CheckPermission ", sought);
        Require(sought.resource() == nullptr && sought.IsConditional(), "asked for another permission than a field's");
        return InMemorySecurityManager::CheckPermission(sought);
    }
    bool GetResources(const std::string& name, unsigned value, std::vector<std::string>& resources) override
    {
        outside.calls.Ask("GetResources ", name, " ", value);
        Require(resources.empty(), "asked to add resources to those of another field");
        const bool isAnswered = InMemorySecurityManager::GetResources(name, value, resources);
        return !outside.resources.IsNext() && isAnswered;
    }
    UserDetailsInterface* GetUserDetails() override
    {
        outside.calls.Ask("GetUserDetails");
        return details.Of(user);
    }

private:
    RecordedDetails details;
} securityManager(outside.users);

class RecordedPermissionList : public InMemoryPermissionList {
public:
    using InMemoryPermissionList::InMemoryPermissionList;
    ~RecordedPermissionList() override { outside.calls.Delete("permission list"); }
};

class RecordedAdministration : public InMemoryAdministration {
public:
    using InMemoryAdministration::InMemoryAdministration;

    bool Initialize(const char* text, unsigned value, const char* mode) override
    {
        outside.calls.Ask("admin Initialize ", text, " ", value, " ", mode);
        return outside.administration == Offer::connects;
    }
    UserDetailsInterface* GetUserDetails(const char* domain, const char* userName) override
    {
        outside.calls.Ask("admin GetUserDetails ", domain, " ", userName);
        return details.Of(InMemoryAdministration::GetUserDetails(domain, userName));
    }
    PermissionListInterface* GetPermissionList(const char* group, const char* userName) override
    {
        outside.calls.Ask("admin GetPermissionList ", group, " ", userName);
        const auto user = users.find(userName);
        Require(user != users.end() && user->second.group == group, "asked for the permissions of another group");
        return !outside.permissionLists.IsNext() ? new RecordedPermissionList(user->second.permissions) : nullptr;
    }

private:
    RecordedDetails details;
} administration(outside.users);

} // namespace

InMemorySecurityManager& OutsideSecurityManager()
{
    return securityManager;
}

std::string RecordedMessage(int level, const std::string& function, std::string text)
{
    if (text.ends_with('\n')) {
        text.replace(text.size() - 1, 1, "\\n");
    }
    return std::to_string(level) + " " + function + ": " + text;
}

} // namespace secm::testing

using namespace secm::testing;

int Tmr_LogFile::StoreParams(const char* sourceFile, const char* function, int line, int level, int module, int number)
{
    announcedLevel = level;
    announcedFunction = function;
    const std::string source = sourceFile;
    Require(line > 0 && module == 197 && number == 1 && source.starts_with("SECM_AccessControl/") &&
                announcedFunction.starts_with(source.substr(source.find('/') + 1) + "::"),
            "a message has a wrong origin");
    return level <= outside.logLevel ? 2 : 0;
}

void Tmr_LogFile::Log(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    std::vsnprintf(text.data(), text.size(), format, again);
    va_end(again);
    text.pop_back();
    outside.calls.record.push_back(RecordedMessage(announcedLevel, announcedFunction, std::move(text)));
}

SecurityManagerInterface* getSecurityManagerInterface(const char* name, unsigned version)
{
    outside.calls.Ask("getSecurityManagerInterface ", name, " ", version);
    return outside.securityManager != Offer::isMissing ? &securityManager : nullptr;
}

void releaseSecurityManagerInterface(SecurityManagerInterface* released)
{
    Require(released == &securityManager, "released another security manager");
    outside.calls.Do("release security manager");
}

SMADM_Interface* getSECM_Interface(const char* name, unsigned version)
{
    outside.calls.Ask("getSECM_Interface ", name, " ", version);
    return outside.administration != Offer::isMissing ? &administration : nullptr;
}

void releaseSECM_Interface(SMADM_Interface* released)
{
    Require(released == &administration, "released another administration interface");
    outside.calls.Do("release administration");
}
