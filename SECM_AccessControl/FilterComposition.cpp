// Composes the filter from a user's permissions. Log-in and by-name requests share the code; only their source differs.
#include "SECM_AccessControl/SECM_AccessControlManager.h"

#include "SECM_AccessControl/Log.h"
#include "platform/security_manager/PermissionBase.h"
#include "platform/security_manager/PermissionListInterface.h"
#include "platform/security_manager/SMADM_Interface.h"
#include "platform/security_manager/SecurityManagerInterface.h"
#include "platform/security_manager/UserDetailsInterface.h"

namespace {

constexpr secm::LogOrigin compositionLog{secm::managerSourceFile, "SECM_AccessControlManager::GetAccessControlFilter"};

} // namespace

class SECM_AccessControlManager::LoggedInUser {
public:
    LoggedInUser(SECM_AccessControlManager& askingManager, SecurityManagerInterface* asked)
        : manager(askingManager), securityManager(asked)
    {
    }

    bool Holds(const PermissionBase& permission) { return securityManager->CheckPermission(permission); }

    bool GetResources(const FieldDefinition& field, std::vector<std::string>& resources)
    {
        return securityManager->GetResources(field.permissionName, field.permissionValue, resources);
    }

    void RewriteValue(std::string& value, const FieldDefinition& field)
    {
        manager.ReplaceSingleValue(value, field, securityManager);
    }

    std::string FillCondition(const ConditionDefinition& condition, const std::vector<std::string>& values)
    {
        return manager.HandleSingleCondition(condition, values, securityManager);
    }

private:
    SECM_AccessControlManager& manager;
    SecurityManagerInterface* securityManager;
};

class SECM_AccessControlManager::NamedUser {
public:
    NamedUser(SECM_AccessControlManager& askingManager, PermissionListInterface* permissions,
              UserDetailsInterface* details)
        : manager(askingManager), permissionList(permissions), userDetails(details)
    {
    }

    bool Holds(const PermissionBase& permission) { return manager.CheckPermissionInList(permissionList, permission); }

    bool GetResources(const FieldDefinition& field, std::vector<std::string>& resources)
    {
        return manager.GetResourcesFromList(permissionList, field.permissionName, field.permissionValue, resources);
    }

    void RewriteValue(std::string& value, const FieldDefinition& field)
    {
        manager.ReplaceSingleValueForUser(value, field, userDetails);
    }

    std::string FillCondition(const ConditionDefinition& condition, const std::vector<std::string>& values)
    {
        return manager.HandleSingleConditionForUser(condition, values, userDetails);
    }

private:
    SECM_AccessControlManager& manager;
    PermissionListInterface* permissionList;
    UserDetailsInterface* userDetails;
};

std::string SECM_AccessControlManager::GetAccessControlFilter(SecurityManagerInterface* secmInterface)
{
    SECM_LOG(compositionLog, traceLevel, "GetAccessControlFilter - IN\n");
    if (secmInterface == nullptr) {
        SECM_LOG(compositionLog, failureLevel, "secmInterface is null - returning\n");
        return hideAllFilter;
    }
    LoggedInUser user(*this, secmInterface);
    return ComposeFilter(user);
}

std::string SECM_AccessControlManager::GetAccessControlFilter(const std::string& userName)
{
    SECM_LOG(compositionLog, traceLevel, "GetAccessControlFilter - IN\n");
    if (adminInterface == nullptr) {
        SECM_LOG(compositionLog, failureLevel, "Security manager admin is not initialized\n");
        return hideAllFilter;
    }
    UserDetailsInterface* userDetails = adminInterface->GetUserDetails(nullptr, userName.c_str());
    if (userDetails == nullptr) {
        SECM_LOG(compositionLog, userLevel, "Couldn't get user details for userName: '%s'\n", userName.c_str());
        return defaultFilter;
    }
    std::string groupName;
    userDetails->GetGroupName(groupName);
    SECM_LOG(compositionLog, traceLevel, "Getting filters for user: %s, group: %s ", userName.c_str(),
             groupName.c_str());
    const std::shared_ptr<PermissionListInterface> permissionList(
        adminInterface->GetPermissionList(groupName.c_str(), userName.c_str()));
    if (!permissionList) {
        SECM_LOG(compositionLog, failureLevel, "Couldn't get permission list for user '%s' and group '%s'\n",
                 userName.c_str(), groupName.c_str());
        return hideAllFilter;
    }
    NamedUser user(*this, permissionList.get(), userDetails);
    return ComposeFilter(user);
}

template <class User>
bool SECM_AccessControlManager::CollectValues(User& user, const FieldDefinition& field,
                                              std::vector<std::string>& values)
{
    values.clear();
    if (!user.GetResources(field, values)) {
        SECM_LOG(compositionLog, failureLevel, "Couldn't get resources for user for permission name: '%s'\n",
                 field.permissionName.c_str());
        return false;
    }
    for (std::string& value : values) {
        user.RewriteValue(value, field);
    }
    std::erase_if(values, [](const std::string& value) { return value.empty(); });
    if (values.empty()) {
        SECM_LOG(compositionLog, traceLevel, "No values were found for the permission: '%s'\n",
                 field.permissionName.c_str());
        return false;
    }
    return true;
}

template <class User>
void SECM_AccessControlManager::AppendClause(User& user, const FieldDefinition& field,
                                             const std::vector<std::string>& values, std::string& filter)
{
    std::size_t start = 0;
    int conditionCount = 0;
    for (const ConditionDefinition& condition : field.conditions) {
        std::string text = user.FillCondition(condition, values);
        if (text.empty()) {
            continue;
        }
        if (++conditionCount > 1) {
            filter.append(field.conditionsDelimiter);
        } else if (!filter.empty()) {
            filter.append(filterDelimiter);
            start = filter.size();
        }
        if (filter.empty()) {
            filter = std::move(text); // avoids copying a long list
        } else {
            filter.append(text);
        }
    }
    if (conditionCount > 1) {
        filter.insert(start, 1, '(');
        filter.push_back(')');
    }
}

template <class User>
std::string SECM_AccessControlManager::ComposeFilter(User& user)
{
    std::string filter;
    // Declared here so that all fields of a request use the same memory.
    std::vector<std::string> values;

    for (const auto& field : fieldDefinitions) {
        if (user.Holds(PermissionBase(field->permissionName.c_str(), field->permissionValue, nullptr, true))) {
            continue; // held outright: no restriction
        }
        if (!CollectValues(user, *field, values)) {
            return hideAllFilter;
        }
        AppendClause(user, *field, values, filter);
    }

    SECM_LOG(compositionLog, traceLevel, "GetAccessControlFilter - OUT. Filter: %s\n", filter.c_str());
    return filter;
}
