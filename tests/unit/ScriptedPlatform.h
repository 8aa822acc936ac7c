// A platform that answers what a test tells it to, and writes every call, message and release into one
// journal.
#pragma once

#include "SECM_AccessControl/SECM_AccessControlManager.h"
#include "platform/security_manager/PermissionBase.h"
#include "platform/security_manager/SecurityManagerInterface.h"
#include "tests/RowName.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

using Lines = std::vector<std::string>;

struct Script {
    Lines journal;
    int logLevel = 7;
    int callToFail = 0; ///< The call to the outside, counted from 1, that throws; 0: none.
    int calls = 0;

    bool hasRepositoryServices = true;
    std::vector<std::pair<std::string, std::string>>
        configuration; ///< Paths with values; a path ending in "\": a node.

    bool hasSecurityManager = true;
    bool securityManagerConnects = true;
    bool hasAdministration = true;
    bool administrationConnects = true;
    bool isLoggedIn = true;
    bool hasUserDetails = true;
    bool hasPermissionList = true;
    bool resourcesAreTold = true;
    std::string group = "staff";
    std::map<std::string, std::string> attributes;
    std::vector<PermissionBase> permissions;
};
extern Script script;

/// The steps made callable, and their calls written into the journal when `isWatched`.
class WatchedManager : public SECM_AccessControlManager {
public:
    using SECM_AccessControlManager::adminInterface;
    using SECM_AccessControlManager::callback;
    using SECM_AccessControlManager::ClearFieldDefinitions;
    using SECM_AccessControlManager::defaultFilter;
    using SECM_AccessControlManager::fieldDefinitions;
    using SECM_AccessControlManager::filterDelimiter;
    using SECM_AccessControlManager::GetAccessControlFilter;
    using SECM_AccessControlManager::hideAllFilter;
    using SECM_AccessControlManager::multipleEqualOperator;
    using SECM_AccessControlManager::ReadConfigurations;
    using SECM_AccessControlManager::RegisterValuesFunction;
    using SECM_AccessControlManager::SECM_AccessControlManager;
    using SECM_AccessControlManager::securityManager;
    using SECM_AccessControlManager::singleEqualOperator;
    using SECM_AccessControlManager::SplitCommaList;
    using SECM_AccessControlManager::valueMultiplicityDelimiter;
    using SECM_AccessControlManager::valueMultiplicityPrefix;
    using SECM_AccessControlManager::valueMultiplicitySuffix;
    using SECM_AccessControlManager::valuesFunctionFactories;

    std::string HandleSingleConditionForUser(const ConditionDefinition&, const Lines&,
                                             UserDetailsInterface*) override;
    std::string HandleSingleCondition(const ConditionDefinition&, const Lines&,
                                      SecurityManagerInterface*) override;
    void ReplaceSingleValueForUser(std::string&, const FieldDefinition&, UserDetailsInterface*) override;
    void ReplaceSingleValue(std::string&, const FieldDefinition&, SecurityManagerInterface*) override;
    void ResolveUserField(std::string&, UserDetailsInterface*) override;
    std::string ApplyValuesFunction(const std::string&, const ConditionDefinition&) override;
    bool CheckPermissionInList(PermissionListInterface*, const PermissionBase&) override;
    bool GetResourcesFromList(PermissionListInterface*, const std::string&, unsigned, Lines&) override;

    bool isWatched = false;
};

inline const std::string configurationRoot =
    "zarvona\\system\\applications\\securitymanager\\unified_access_control\\";
inline const std::string repositoryNode = configurationRoot + "repositories\\docs\\";

class ScriptedTest : public testing::Test {
protected:
    ScriptedTest() { script = Script(); }

    static void Configure(const std::string& path, const std::string& value)
    {
        script.configuration.emplace_back(path, value);
    }
    /// Everything in the journal since the last call.
    static Lines TakeJournal() { return std::exchange(script.journal, {}); }
    /// A connected manager with the usual settings and these fields, each with permission "may NAME",
    /// value 1.
    static std::unique_ptr<WatchedManager>
    ConnectedManager(const std::map<std::string, Lines>& conditionsOfFields);
};

UserDetailsInterface* ScriptedUserDetails();
SecurityManagerInterface* ScriptedSecurityManager();
/// A list of the script's permissions, owned by the caller.
PermissionListInterface* ScriptedPermissionList();
