#include "tests/unit/ScriptedPlatform.h"

#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/logging/Tmr_LogFile.h"
#include "platform/security_manager/PermissionListInterface.h"
#include "platform/security_manager/SECM_CallBackInterface.h"
#include "platform/security_manager/SMADM_Interface.h"
#include "platform/security_manager/UserDetailsInterface.h"

#include <algorithm>
#include <cstdarg>
#include <memory>
#include <stdexcept>

Script script;
Tmr_LogFile TmrGLog;

namespace {

std::string messageOrigin;

void Outside(const std::string& call)
{
    script.journal.push_back(call);
    if (++script.calls == script.callToFail) {
        throw std::runtime_error(call);
    }
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
        Outside("GetGroupName '" + groupName + "'");
        groupName = script.group;
        return false; // which nobody may rely on
    }
    const char* GetAttribute(const char* name) override
    {
        Outside(std::string("GetAttribute ") + name);
        const auto found = script.attributes.find(name);
        return found != script.attributes.end() ? found->second.c_str() : nullptr;
    }
} userDetails;

struct PermissionList : PermissionListInterface {
    ~PermissionList() override { script.journal.push_back("delete permission list"); }
    const std::vector<PermissionBase>* GetPermissions() override { return &script.permissions; }
};

struct SecurityManager : SecurityManagerInterface {
    bool Initialize(const char* text, unsigned value, const char* mode, SECM_CallBackInterface* callback,
                    bool flag) override
    {
        std::string application;
        callback->GetApplicationName(application);
        Outside("Initialize " + Shown(text) + " " + std::to_string(value) + " " + mode + " " + application +
                (flag ? " 1" : " 0"));
        return script.securityManagerConnects;
    }
    bool Login(SECM_CallBackInterface* callback, bool flag) override
    {
        bool auxiliaryFlag = true;
        std::string user, auxiliary = "?", group, second, address;
        const bool answers =
            callback->GetUserName(user) && callback->GetAuxiliaryText(auxiliary, auxiliaryFlag) &&
            callback->GetGroup(group) && callback->GetSecondGroup(second) && callback->GetIpAddress(address);
        Outside("Login " + user + "|" + auxiliary + "|" + group + "|" + second + "|" + address +
                (answers && !auxiliaryFlag && !flag ? "" : " wrong"));
        return false; // which nobody may rely on
    }
    bool IsLoggedIn(const char* application) override
    {
        Outside(std::string("IsLoggedIn ") + application);
        return script.isLoggedIn;
    }
    bool Logout() override
    {
        Outside("Logout");
        return true;
    }
    bool CheckPermission(const PermissionBase& permission) override
    {
        Outside("CheckPermission " + Shown(permission));
        return std::any_of(script.permissions.begin(), script.permissions.end(),
                           [&](const auto& granted) { return permission <= granted; });
    }
    bool GetResources(const std::string& name, unsigned value, std::vector<std::string>& resources) override
    {
        Outside("GetResources " + name + " " + std::to_string(value) + " " +
                std::to_string(resources.size()));
        for (const auto& granted : script.permissions) {
            if (granted.name() == name && granted.resource() != nullptr) {
                resources.emplace_back(granted.resource());
            }
        }
        return script.resourcesAreTold;
    }
    UserDetailsInterface* GetUserDetails() override
    {
        Outside("GetUserDetails");
        return script.hasUserDetails ? &userDetails : nullptr;
    }
} securityManager;

struct Administration : SMADM_Interface {
    bool Initialize(const char* text, unsigned value, const char* mode) override
    {
        Outside("admin Initialize " + Shown(text) + " " + std::to_string(value) + " " + mode);
        return script.administrationConnects;
    }
    UserDetailsInterface* GetUserDetails(const char* domain, const char* userName) override
    {
        Outside("admin GetUserDetails " + Shown(domain) + " " + userName);
        return script.hasUserDetails ? &userDetails : nullptr;
    }
    PermissionListInterface* GetPermissionList(const char* group, const char* user) override
    {
        Outside(std::string("admin GetPermissionList ") + group + " " + user);
        return script.hasPermissionList ? new PermissionList : nullptr;
    }
} administration;

struct NameList : CFG_NameList {
    ~NameList() override { script.journal.push_back("delete names"); }
    const char* GetName(int index) const override
    {
        return names.at(static_cast<std::size_t>(index)).c_str();
    }
    int GetCount() const override { return static_cast<int>(names.size()); }
    Lines names;
};

// A node is there when something stands below it.
struct Node : CFG_RepositoryServices {
    explicit Node(std::string nodePath) : path(std::move(nodePath)) {}
    ~Node() override { script.journal.push_back("delete " + path); }

    static bool Exists(const std::string& node)
    {
        return std::any_of(script.configuration.begin(), script.configuration.end(),
                           [&](const auto& entry) { return entry.first.starts_with(node); });
    }
    static std::string Value(const std::string& valuePath)
    {
        const auto found = std::find_if(script.configuration.begin(), script.configuration.end(),
                                        [&](const auto& entry) { return entry.first == valuePath; });
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
        return Value(path + key.data());
    }
    RWCString GetValueByPath(const RWCString& relative) const override
    {
        Outside("GetValueByPath " + path + relative.data());
        return Value(path + relative.data());
    }
    CFG_NameList* GetChildNames(const RWCString& relative) const override
    {
        const std::string node = path + relative.data() + (relative.length() != 0 ? "\\" : "");
        Outside("GetChildNames " + node);
        auto list = std::make_unique<NameList>();
        for (const auto& [entry, value] : script.configuration) {
            const std::string below = entry.starts_with(node) ? entry.substr(node.size()) : "";
            const std::string name = below.substr(0, below.find('\\'));
            if (name != below &&
                std::find(list->names.begin(), list->names.end(), name) == list->names.end()) {
                list->names.push_back(name);
            }
        }
        return Exists(node) ? list.release() : nullptr;
    }
    std::int32_t* GetIntValue(RWCString key) const override
    {
        Outside(std::string("GetIntValue ") + key.data());
        const std::string value = Value(path + key.data());
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
    Outside("GetRepositoryServices");
    return script.hasRepositoryServices ? &root : nullptr;
}

struct Tmr_LogFile::Writer {};
Tmr_LogFile::~Tmr_LogFile() = default;

int Tmr_LogFile::StoreParams(const char* sourceFile, const char* function, int line, int level, int module,
                             int number)
{
    const std::string source = sourceFile;
    messageOrigin = std::to_string(level) + " " + function + ": ";
    if (!function || line <= 0 || module != 197 || number != 1 ||
        !source.starts_with("SECM_AccessControl/") ||
        std::string(function).rfind(source.substr(source.find('/') + 1), 0) != 0) {
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
    script.journal.push_back(messageOrigin + text);
}

SecurityManagerInterface* getSecurityManagerInterface(const char* name, unsigned version)
{
    Outside("getSecurityManagerInterface " + std::string(name) + " " + std::to_string(version));
    return script.hasSecurityManager ? &securityManager : nullptr;
}

void releaseSecurityManagerInterface(SecurityManagerInterface* released)
{
    Outside(released == &securityManager ? "release security manager" : "wrong release");
}

SMADM_Interface* getSECM_Interface(const char* name, unsigned version)
{
    Outside("getSECM_Interface " + std::string(name) + " " + std::to_string(version));
    return script.hasAdministration ? &administration : nullptr;
}

void releaseSECM_Interface(SMADM_Interface* released)
{
    Outside(released == &administration ? "release administration" : "wrong release");
}

UserDetailsInterface* ScriptedUserDetails()
{
    return &userDetails;
}

SecurityManagerInterface* ScriptedSecurityManager()
{
    return &securityManager;
}

PermissionListInterface* ScriptedPermissionList()
{
    return new PermissionList;
}

std::unique_ptr<WatchedManager>
ScriptedTest::ConnectedManager(const std::map<std::string, Lines>& conditionsOfFields)
{
    const std::pair<const char*, const char*> settings[] = {
        {"hide_all_filter", "NOTHING"},     {"default_filter", "DEFAULT"},
        {"filter_delimiter", " AND "},      {"single_equal_operator", "="},
        {"multiple_equal_operator", "in"},  {"value_multiplicity_delimiter", ","},
        {"value_multiplicity_prefix", "("}, {"value_multiplicity_suffix", ")"}};
    for (const auto& [key, value] : settings) {
        Configure(repositoryNode + key, value);
    }
    for (const auto& [field, conditions] : conditionsOfFields) {
        const std::string node = configurationRoot + "fields\\" + field + "\\docs\\";
        Configure(node + "permission_name", "may " + field);
        Configure(node + "permission_value", "1");
        Configure(node + "conditions_delimiter", " OR ");
        for (std::size_t n = 0; n < conditions.size(); ++n) {
            Configure(node + "condition" + std::to_string(n + 1), conditions[n]);
        }
    }
    auto manager = std::make_unique<WatchedManager>("docs");
    manager->InitSecurityConnection("text", 7);
    TakeJournal();
    return manager;
}

#define WATCH(step, ...)                                                                                     \
    if (isWatched) {                                                                                         \
        script.journal.push_back("step " #step);                                                             \
    }                                                                                                        \
    return SECM_AccessControlManager::step(__VA_ARGS__)

std::string WatchedManager::HandleSingleConditionForUser(const ConditionDefinition& c, const Lines& v,
                                                         UserDetailsInterface* u)
{
    WATCH(HandleSingleConditionForUser, c, v, u);
}
std::string WatchedManager::HandleSingleCondition(const ConditionDefinition& c, const Lines& v,
                                                  SecurityManagerInterface* s)
{
    WATCH(HandleSingleCondition, c, v, s);
}
void WatchedManager::ReplaceSingleValueForUser(std::string& v, const FieldDefinition& f,
                                               UserDetailsInterface* u)
{
    WATCH(ReplaceSingleValueForUser, v, f, u);
}
void WatchedManager::ReplaceSingleValue(std::string& v, const FieldDefinition& f, SecurityManagerInterface* s)
{
    WATCH(ReplaceSingleValue, v, f, s);
}
void WatchedManager::ResolveUserField(std::string& t, UserDetailsInterface* u)
{
    WATCH(ResolveUserField, t, u);
}
std::string WatchedManager::ApplyValuesFunction(const std::string& v, const ConditionDefinition& c)
{
    WATCH(ApplyValuesFunction, v, c);
}
bool WatchedManager::CheckPermissionInList(PermissionListInterface* l, const PermissionBase& p)
{
    WATCH(CheckPermissionInList, l, p);
}
bool WatchedManager::GetResourcesFromList(PermissionListInterface* l, const std::string& n, unsigned v,
                                          Lines& r)
{
    WATCH(GetResourcesFromList, l, n, v, r);
}
