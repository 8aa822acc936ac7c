#include "tests/unit/ScriptedPlatform.h"

#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/logging/Tmr_LogFile.h"
#include "platform/security_manager/PermissionListInterface.h"
#include "platform/security_manager/SECM_CallBackInterface.h"
#include "platform/security_manager/SMADM_Interface.h"
#include "platform/security_manager/SecurityManagerInterface.h"
#include "platform/security_manager/UserDetailsInterface.h"
#include "tests/unit/FailingAllocation.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <stdexcept>

Script script;
Tmr_LogFile TmrGLog;

namespace {

std::string messageOrigin;

// Writes the call down, fails it when its turn has come, and answers what the script says about `question`.
bool Outside(const std::string& call, const std::string& question = "")
{
    script.journal.push_back(call);
    if (++script.calls == script.callToFail) {
        throw std::runtime_error(call);
    }
    return script.Answers(question);
}

// What a destructor does.
void WriteDown(const char* action, const std::string& object = "")
{
    const AllocationsSucceed always;
    script.journal.push_back(action + object);
}

std::string Shown(const char* text)
{
    return text != nullptr ? text : "null";
}

std::string Shown(const PermissionBase& permission)
{
    return std::string(permission.name()) + ":" + std::to_string(permission.value()) + ":" +
           Shown(permission.resource()) + (permission.IsConditional() ? ":conditional" : "");
}

struct UserDetails : UserDetailsInterface {
    bool GetGroupName(std::string& groupName) override
    {
        Outside("GetGroupName '" + std::exchange(groupName, script.group) + "'");
        return false; // which nobody may rely on
    }
    const char* GetAttribute(const char* name) override
    {
        Outside(std::string("GetAttribute ") + name);
        return script.attributes.count(name) != 0 ? script.attributes.at(name).c_str() : nullptr;
    }
} userDetails;

struct PermissionList : PermissionListInterface {
    ~PermissionList() override { WriteDown("delete permission list"); }
    const std::vector<PermissionBase>* GetPermissions() override { return &script.permissions; }
};

struct SecurityManager : SecurityManagerInterface {
    bool Initialize(const char* text, unsigned value, const char* mode, SECM_CallBackInterface* callback,
                    bool flag) override
    {
        std::string application;
        application = callback->GetApplicationName(application) ? application : "wrong";
        return Outside("Initialize " + Connection(text, value, mode) + " " + application + (flag ? " wrong" : ""),
                       "security manager connects");
    }
    bool Login(SECM_CallBackInterface* callback, bool flag) override
    {
        bool auxiliaryFlag = true;
        std::string user = "?", auxiliary = "?", group = "?", second = "?", address = "?";
        const bool answers = callback->GetUserName(user) && callback->GetAuxiliaryText(auxiliary, auxiliaryFlag) &&
                             callback->GetGroup(group) && callback->GetSecondGroup(second) &&
                             callback->GetIpAddress(address);
        Outside("Login " + user + "|" + auxiliary + "|" + group + "|" + second + "|" + address +
                (answers && !auxiliaryFlag && !flag ? "" : " wrong"));
        return false; // which nobody may rely on
    }
    bool IsLoggedIn(const char* application) override
    {
        return Outside(std::string("IsLoggedIn ") + application, "logged in");
    }
    bool Logout() override { return Outside("Logout"); }
    bool CheckPermission(const PermissionBase& permission) override
    {
        Outside("CheckPermission " + Shown(permission));
        return std::any_of(script.permissions.begin(), script.permissions.end(),
                           [&](const auto& granted) { return permission <= granted; });
    }
    bool GetResources(const std::string& name, unsigned value, Lines& resources) override
    {
        for (const auto& granted : script.permissions) {
            if (granted.name() == name && granted.resource() != nullptr) {
                resources.emplace_back(granted.resource());
            }
        }
        return Outside("GetResources " + name + " " + std::to_string(value), "resources");
    }
    UserDetailsInterface* GetUserDetails() override
    {
        return Outside("GetUserDetails", "user details") ? &userDetails : nullptr;
    }

    static std::string Connection(const char* text, unsigned value, const char* mode)
    {
        return Shown(text) + " " + std::to_string(value) + " " + mode;
    }
} securityManager;

struct Administration : SMADM_Interface {
    bool Initialize(const char* text, unsigned value, const char* mode) override
    {
        return Outside("admin Initialize " + SecurityManager::Connection(text, value, mode), "administration connects");
    }
    UserDetailsInterface* GetUserDetails(const char* domain, const char* user) override
    {
        return Outside("admin GetUserDetails " + Shown(domain) + " " + user, "user details") ? &userDetails : nullptr;
    }
    PermissionListInterface* GetPermissionList(const char* group, const char* user) override
    {
        return Outside(std::string("admin GetPermissionList ") + group + " " + user, "permission list")
                   ? new PermissionList
                   : nullptr;
    }
} administration;

struct NameList : CFG_NameList {
    ~NameList() override { WriteDown("delete names"); }
    const char* GetName(int index) const override { return names.at(static_cast<std::size_t>(index)).c_str(); }
    int GetCount() const override { return static_cast<int>(names.size()); }
    Lines names;
};

// A node is there when something stands below it.
struct Node : CFG_RepositoryServices {
    explicit Node(std::string nodePath) : path(std::move(nodePath)) {}
    ~Node() override { WriteDown("delete ", path); }

    static bool Exists(const std::string& node)
    {
        const auto next = script.configuration.lower_bound(node);
        return next != script.configuration.end() && next->first.starts_with(node);
    }
    std::string Value(const char* name) const
    {
        const auto found = script.configuration.find(path + name);
        return found != script.configuration.end() ? found->second : "";
    }
    CFG_RepositoryServices* GetSubTree(const RWCString& relative) const override
    {
        const std::string node = path + static_cast<const char*>(relative) + "\\";
        Outside("GetSubTree " + node);
        return Exists(node) ? new Node(node) : nullptr;
    }
    RWCString GetValue(RWCString key, RWCString defaultValue) const override
    {
        Outside(std::string("GetValue ") + key.data() + (defaultValue.length() != 0 ? " wrong default" : ""));
        return Value(key);
    }
    RWCString GetValueByPath(const RWCString& relative) const override
    {
        Outside("GetValueByPath " + path + relative.data());
        return Value(relative);
    }
    CFG_NameList* GetChildNames(const RWCString& relative) const override
    {
        const std::string node = path + relative.data() + (relative.length() != 0 ? "\\" : "");
        if (!Outside("GetChildNames " + node, "name lists") || !Exists(node)) {
            return nullptr;
        }
        auto list = std::make_unique<NameList>();
        for (const auto& [entry, value] : script.configuration) {
            const Lines names = Split(entry.starts_with(node) ? entry.substr(node.size()) : "", "\\");
            if (names.size() > 1 && (list->names.empty() || list->names.back() != names.front())) {
                list->names.push_back(names.front());
            }
        }
        return list.release();
    }
    std::int32_t* GetIntValue(RWCString key) const override
    {
        Outside(std::string("GetIntValue ") + key.data());
        const std::string value = Value(key);
        return value.empty() ? nullptr : new std::int32_t(std::stoi(value));
    }

    std::string path;
};

} // namespace

CFG_NameList::~CFG_NameList() = default;
CFG_RepositoryServices::~CFG_RepositoryServices() = default;

CFG_RepositoryServices* CFG_Factory::GetRepositoryServices()
{
    static Node root("");
    return Outside("GetRepositoryServices", "repository services") ? &root : nullptr;
}

int Tmr_LogFile::StoreParams(const char* sourceFile, const char* function, int line, int level, int module, int number)
{
    const std::string source = sourceFile;
    messageOrigin = std::to_string(level) + " " + function + ": ";
    if (!function || line <= 0 || module != 197 || number != 1 || !source.starts_with("SECM_AccessControl/") ||
        !std::string(function).starts_with(source.substr(source.find('/') + 1) + "::")) {
        messageOrigin += "wrong origin ";
    }
    return level <= script.logLevel ? 2 : 0;
}

void Tmr_LogFile::Log(const char* format, ...)
{
    char text[1000];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    std::string message = messageOrigin + text;
    if (message.ends_with('\n')) {
        message.replace(message.size() - 1, 1, "\\n");
    }
    script.journal.push_back(message);
}

SecurityManagerInterface* getSecurityManagerInterface(const char* name, unsigned version)
{
    return Outside("getSecurityManagerInterface " + std::string(name) + " " + std::to_string(version),
                   "security manager")
               ? &securityManager
               : nullptr;
}

void releaseSecurityManagerInterface(SecurityManagerInterface* released)
{
    Outside(released == &securityManager ? "release security manager" : "wrong release");
}

SMADM_Interface* getSECM_Interface(const char* name, unsigned version)
{
    return Outside("getSECM_Interface " + std::string(name) + " " + std::to_string(version), "administration")
               ? &administration
               : nullptr;
}

void releaseSECM_Interface(SMADM_Interface* released)
{
    Outside(released == &administration ? "release administration" : "wrong release");
}

SecurityManagerInterface* ScriptedSecurityManager()
{
    return &securityManager;
}

PermissionListInterface* ScriptedPermissionList()
{
    static PermissionList list;
    return &list;
}
