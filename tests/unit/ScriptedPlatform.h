// A platform that answers what a test tells it to, and writes every call, message and release into one
// journal.
#pragma once

#include "SECM_AccessControl/SECM_AccessControlManager.h"
#include "platform/security_manager/PermissionBase.h"
#include "tests/Cases.h"

#include <map>

using secm::testing::Lines;
using secm::testing::Split;

struct Script {
    Lines journal;
    int logLevel = 7;
    int callToFail = 0; ///< The call to the outside, counted from 1, that throws; 0: none.
    int calls = 0;

    std::map<std::string, std::string> configuration; ///< Values by path; a path ending in "\": a node.
    std::string group = "staff";
    std::map<std::string, std::string> attributes;
    std::vector<PermissionBase> permissions;
    std::map<std::string, bool> answers; ///< What is not named is answered with true.

    bool Answers(const std::string& question) const { return answers.count(question) == 0 || answers.at(question); }
};
extern Script script;

SecurityManagerInterface* ScriptedSecurityManager();
PermissionListInterface* ScriptedPermissionList();

/// A step that writes itself into the journal and is then taken as it is.
#define WATCHED(result, step, parameters, arguments)                                                                   \
    result step parameters override                                                                                    \
    {                                                                                                                  \
        script.journal.push_back("step " #step);                                                                       \
        return SECM_AccessControlManager::step arguments;                                                              \
    }

/// The manager with its members open, and its steps watched.
class WatchedManager : public SECM_AccessControlManager {
    using Base = SECM_AccessControlManager;
    using Details = UserDetailsInterface;
    using Condition = ConditionDefinition;

public:
    using Base::adminInterface, Base::Base, Base::callback, Base::ClearFieldDefinitions, Base::defaultFilter,
        Base::fieldDefinitions, Base::filterDelimiter, Base::GetAccessControlFilter, Base::hideAllFilter,
        Base::multipleEqualOperator, Base::ReadConfigurations, Base::RegisterValuesFunction, Base::repositoryName,
        Base::securityManager, Base::singleEqualOperator, Base::SplitCommaList, Base::valueMultiplicityDelimiter,
        Base::valueMultiplicityPrefix, Base::valueMultiplicitySuffix, Base::valuesFunctionFactories;

    WATCHED(std::string, HandleSingleConditionForUser, (const Condition& c, const Lines& v, Details* d), (c, v, d))
    WATCHED(std::string, HandleSingleCondition, (const Condition& c, const Lines& v, SecurityManagerInterface* s),
            (c, v, s))
    WATCHED(void, ReplaceSingleValueForUser, (std::string & v, const FieldDefinition& f, Details* d), (v, f, d))
    WATCHED(void, ReplaceSingleValue, (std::string & v, const FieldDefinition& f, SecurityManagerInterface* s),
            (v, f, s))
    WATCHED(void, ResolveUserField, (std::string & t, Details* d), (t, d))
    WATCHED(std::string, ApplyValuesFunction, (const std::string& v, const Condition& c), (v, c))
    WATCHED(bool, CheckPermissionInList, (PermissionListInterface * l, const PermissionBase& p), (l, p))
    WATCHED(bool, GetResourcesFromList, (PermissionListInterface * l, const std::string& n, unsigned v, Lines& r),
            (l, n, v, r))
};
