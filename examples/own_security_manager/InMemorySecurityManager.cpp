// A host's own security manager: its users stand in memory. Built into libraries with the names of the supplied ones,
// it takes their place without a change to the module; see docs/embedding.md for what is asked of it.
#include "platform/security_manager/PermissionListInterface.h"
#include "platform/security_manager/SECM_CallBackInterface.h"
#include "platform/security_manager/SMADM_Interface.h"
#include "platform/security_manager/SecurityManagerInterface.h"
#include "platform/security_manager/UserDetailsInterface.h"

#include <algorithm>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace {

struct User : UserDetailsInterface {
    User(std::map<std::string, std::string> known, std::vector<PermissionBase> granted)
        : attributes(std::move(known)), permissions(std::move(granted))
    {
    }
    bool GetGroupName(std::string& /*groupName*/) override { return false; }
    const char* GetAttribute(const char* name) override
    {
        const auto found = attributes.find(name);
        return found != attributes.end() ? found->second.c_str() : nullptr;
    }
    std::map<std::string, std::string> attributes;
    std::vector<PermissionBase> permissions;
};

// One table for each interface object, so that objects on different threads share nothing.
std::map<std::string, User> Users()
{
    const PermissionBase outright[] = {{"archive.site", 1, nullptr, false},
                                       {"archive.kind", 1, nullptr, false},
                                       {"archive.confidentiality", 1, nullptr, false},
                                       {"archive.region", 1, nullptr, false}};
    std::vector<PermissionBase> permissions(std::begin(outright), std::end(outright));
    permissions.emplace_back("archive.department", 1U, "Legal", false);
    permissions.emplace_back("archive.author", 1U, "%my%", false);
    return {{"ada", User({{"employee_id", "e1"}}, permissions)}};
}

class InMemorySecurityManager : public SecurityManagerInterface {
public:
    bool Initialize(const char*, unsigned, const char*, SECM_CallBackInterface*, bool) override { return true; }
    bool Login(SECM_CallBackInterface* callback, bool) override
    {
        std::string name;
        const auto found = callback->GetUserName(name) ? users.find(name) : users.end();
        user = found != users.end() ? &found->second : nullptr;
        callback->GetApplicationName(application);
        return user != nullptr;
    }
    bool IsLoggedIn(const char* asked) override { return user != nullptr && application == asked; }
    bool Logout() override { return std::exchange(user, nullptr) != nullptr; }
    bool CheckPermission(const PermissionBase& sought) override
    {
        if (user == nullptr) {
            return false;
        }
        const auto found = std::find(user->permissions.begin(), user->permissions.end(), sought);
        return found != user->permissions.end() && sought <= *found;
    }
    bool GetResources(const std::string& name, unsigned value, std::vector<std::string>& resources) override
    {
        if (user == nullptr) {
            return false;
        }
        for (const PermissionBase& granted : user->permissions) {
            if (granted.name() == name && (granted.value() & value) == value && granted.resource() != nullptr) {
                resources.emplace_back(granted.resource());
            }
        }
        return true;
    }
    UserDetailsInterface* GetUserDetails() override { return user; }

private:
    std::map<std::string, User> users = Users();
    std::string application;
    User* user = nullptr;
};

struct PermissionList : PermissionListInterface {
    const std::vector<PermissionBase>* GetPermissions() override { return &permissions; }
    std::vector<PermissionBase> permissions;
};

class InMemoryAdministration : public SMADM_Interface {
public:
    bool Initialize(const char*, unsigned, const char*) override { return true; }
    UserDetailsInterface* GetUserDetails(const char*, const char* name) override
    {
        const auto found = users.find(name);
        return found != users.end() ? &found->second : nullptr;
    }
    PermissionListInterface* GetPermissionList(const char* /*group*/, const char* name) override
    {
        auto list = std::make_unique<PermissionList>();
        list->permissions = users.at(name).permissions;
        return list.release();
    }

private:
    std::map<std::string, User> users = Users();
};

// Hosts may never give an interface back, so it is kept until the library goes.
template <class Interface>
class Kept {
public:
    Interface* Add()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return &objects.emplace_back();
    }
    void Remove(const void* object)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        objects.remove_if([object](const Interface& each) { return &each == object; });
    }

private:
    std::mutex mutex;
    std::list<Interface> objects;
};

#ifdef ADMINISTRATION_LIBRARY
Kept<InMemoryAdministration> kept;
#else
Kept<InMemorySecurityManager> kept;
#endif

} // namespace

#ifdef ADMINISTRATION_LIBRARY
SMADM_Interface* getSECM_Interface(const char* /*applicationName*/, unsigned interfaceVersion)
{
    return interfaceVersion == 1 ? kept.Add() : nullptr;
}

void releaseSECM_Interface(SMADM_Interface* administration)
{
    kept.Remove(administration);
}
#else
SecurityManagerInterface* getSecurityManagerInterface(const char* /*applicationName*/, unsigned interfaceVersion)
{
    return interfaceVersion == 0x11010A17 ? kept.Add() : nullptr;
}

void releaseSecurityManagerInterface(SecurityManagerInterface* securityManager)
{
    kept.Remove(securityManager);
}
#endif
