#include "fuzz/FilterPlatform.h"

#include "fuzz/Fuzzing.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/logging/Tmr_LogFile.h"
#include "platform/security_manager/SECM_CallBackInterface.h"
#include "platform/security_manager/SMADM_Interface.h"
#include "platform/security_manager/SecurityManagerInterface.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

Stage stage;
Tmr_LogFile TmrGLog;

namespace {

std::string Text(const RWCString& text)
{
    return {text.data(), text.length()};
}

class NameList : public CFG_NameList {
public:
    explicit NameList(const std::vector<std::string>& ofNames) : names(ofNames) {}
    const char* GetName(int index) const override { return names.at(static_cast<std::size_t>(index)).c_str(); }
    int GetCount() const override { return static_cast<int>(names.size()); }

private:
    std::vector<std::string> names;
};

class Node : public CFG_RepositoryServices {
public:
    explicit Node(std::string nodePath) : path(std::move(nodePath)) {}

    CFG_RepositoryServices* GetSubTree(const RWCString& relative) const override
    {
        const std::string absolute = Absolute(relative);
        return stage.world->configuration.nodes.count(absolute) != 0 ? new Node(absolute) : nullptr;
    }
    RWCString GetValue(RWCString key, RWCString defaultValue) const override
    {
        const auto found = stage.world->configuration.values.find(Absolute(key));
        return found != stage.world->configuration.values.end() ? RWCString(found->second) : defaultValue;
    }
    RWCString GetValueByPath(const RWCString& relative) const override { return GetValue(relative, ""); }
    CFG_NameList* GetChildNames(const RWCString& relative) const override
    {
        const std::string absolute = relative.length() == 0 ? path : Absolute(relative);
        const Configuration& configuration = stage.world->configuration;
        const auto found = configuration.nodes.find(absolute);
        const bool gives = found != configuration.nodes.end() && configuration.withoutNames.count(absolute) == 0;
        return gives ? new NameList(found->second) : nullptr;
    }
    std::int32_t* GetIntValue(RWCString key) const override
    {
        const auto found = stage.world->configuration.integers.find(Absolute(key));
        return found != stage.world->configuration.integers.end() ? new std::int32_t(found->second) : nullptr;
    }

private:
    std::string Absolute(const RWCString& relative) const
    {
        return path.empty() ? Text(relative) : path + "\\" + Text(relative);
    }

    std::string path;
};

UserDetailsInterface* DetailsOf(const User* user)
{
    static UserDetails details;
    details.user = user;
    return user != nullptr && ++stage.detailQueries != stage.request->missingDetails ? &details : nullptr;
}

class SecurityManager : public SecurityManagerInterface {
public:
    bool Initialize(const char*, unsigned, const char*, SECM_CallBackInterface*, bool) override
    {
        return stage.world->securityManager == Interface::connects;
    }
    bool Login(SECM_CallBackInterface* callback, bool) override
    {
        std::string application, name, auxiliary, group, second, address;
        bool flag = true;
        if (!callback->GetApplicationName(application) || !callback->GetUserName(name) ||
            !callback->GetAuxiliaryText(auxiliary, flag) || flag || !callback->GetGroup(group) ||
            !callback->GetSecondGroup(second) || !callback->GetIpAddress(address)) {
            Fail("the callback does not answer");
        }
        stage.journal.push_back("login " + application + "|" + name + "|" + auxiliary + "|" + group + "|" + second +
                                "|" + address);
        stage.loggedIn = stage.world->FindUser(name);
        return false; // which nobody may rely on
    }
    bool IsLoggedIn(const char* application) override
    {
        return stage.loggedIn != nullptr && application == std::string("brantor");
    }
    bool Logout() override
    {
        stage.journal.push_back("logout");
        stage.loggedIn = nullptr;
        return true;
    }
    bool CheckPermission(const PermissionBase& permission) override
    {
        if (permission.resource() != nullptr || !permission.IsConditional()) {
            Fail("asked whether a permission is held that is not the one without a resource");
        }
        for (const Grant& grant : stage.loggedIn->grants) {
            if (!grant.resource && grant.name == permission.name()) {
                return (grant.value & permission.value()) == permission.value();
            }
        }
        return false;
    }
    bool GetResources(const std::string& name, unsigned value, std::vector<std::string>& resources) override
    {
        if (!resources.empty()) {
            Fail("asked to add resources to those of another field");
        }
        for (const Grant& grant : stage.loggedIn->grants) {
            if (grant.resource && grant.name == name && (grant.value & value) == value) {
                resources.push_back(*grant.resource);
            }
        }
        return ++stage.resourceQueries != stage.request->failedResources;
    }
    UserDetailsInterface* GetUserDetails() override { return DetailsOf(stage.loggedIn); }
} securityManager;

class HandedOutList : public PermissionList {
public:
    using PermissionList::PermissionList;
    ~HandedOutList() override { stage.journal.emplace_back("delete permission list"); }
};

class Administration : public SMADM_Interface {
public:
    bool Initialize(const char*, unsigned, const char*) override
    {
        return stage.world->administration == Interface::connects;
    }
    UserDetailsInterface* GetUserDetails(const char* domain, const char* userName) override
    {
        if (domain != nullptr) {
            Fail("asked for details in a domain");
        }
        return DetailsOf(stage.world->FindUser(userName));
    }
    PermissionListInterface* GetPermissionList(const char* group, const char* userName) override
    {
        const User* user = stage.world->FindUser(userName);
        if (user == nullptr || user->group != group) {
            Fail("asked for the permissions of another group");
        }
        return stage.request->hasList ? new HandedOutList(user->grants) : nullptr;
    }
} administration;

template <class Connection>
Connection* Obtain(Interface interface, Connection& connection)
{
    return interface != Interface::isMissing ? &connection : nullptr;
}

int announcedLevel = 0;

} // namespace

PermissionBase PermissionOf(const Grant& grant)
{
    return {grant.name.c_str(), grant.value, grant.resource ? grant.resource->c_str() : nullptr, grant.isConditional};
}

bool UserDetails::GetGroupName(std::string& groupName)
{
    groupName = user->group;
    return false; // which nobody may rely on
}

const char* UserDetails::GetAttribute(const char* name)
{
    const auto found = user->attributes.find(name);
    return found != user->attributes.end() ? found->second.c_str() : nullptr;
}

PermissionList::PermissionList(const std::vector<Grant>& grants)
{
    for (const Grant& grant : grants) {
        permissions.push_back(PermissionOf(grant));
    }
}

SecurityManagerInterface* OwnSecurityManager(const User* user)
{
    stage.loggedIn = user;
    return user != nullptr ? &securityManager : nullptr;
}

CFG_NameList::~CFG_NameList() = default;
CFG_RepositoryServices::~CFG_RepositoryServices() = default;

CFG_RepositoryServices* CFG_Factory::GetRepositoryServices()
{
    static Node root("");
    return stage.world->configuration.exists ? &root : nullptr;
}

int Tmr_LogFile::StoreParams(const char*, const char*, int, int level, int, int)
{
    announcedLevel = level;
    return level <= stage.world->logLevel ? 1 : 0;
}

void Tmr_LogFile::Log(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    char* message = nullptr;
    if (vasprintf(&message, format, arguments) < 0) {
        Fail(std::string("a message cannot be formatted: ") + format);
    }
    va_end(arguments);
    stage.journal.push_back(std::to_string(announcedLevel) + " " + message);
    std::free(message);
}

SecurityManagerInterface* getSecurityManagerInterface(const char*, unsigned)
{
    return Obtain<SecurityManagerInterface>(stage.world->securityManager, securityManager);
}

void releaseSecurityManagerInterface(SecurityManagerInterface*)
{
    stage.journal.emplace_back("release security manager");
}

SMADM_Interface* getSECM_Interface(const char*, unsigned)
{
    return Obtain<SMADM_Interface>(stage.world->administration, administration);
}

void releaseSECM_Interface(SMADM_Interface*)
{
    stage.journal.emplace_back("release administration");
}
