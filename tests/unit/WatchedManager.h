// The manager with its members open. Its steps are recorded among the calls to the outside.
#pragma once

#include "SECM_AccessControl/SECM_AccessControlManager.h"
#include "platform/security_manager/PermissionBase.h"
#include "testing/Outside.h"

#include <string>
#include <vector>

namespace secm::testing {

/// Overrides a step: records its name, then calls the original.
#define WATCHED(result, step, parameters, arguments)                                                                   \
    result step parameters override                                                                                    \
    {                                                                                                                  \
        outside.calls.Ask("step " #step);                                                                              \
        return SECM_AccessControlManager::step arguments;                                                              \
    }

class WatchedManager : public SECM_AccessControlManager {
    using Base = SECM_AccessControlManager;
    using Details = UserDetailsInterface;
    using Condition = ConditionDefinition;
    using Texts = std::vector<std::string>;

public:
    using Base::adminInterface, Base::Base, Base::callback, Base::ClearFieldDefinitions, Base::defaultFilter,
        Base::fieldDefinitions, Base::filterDelimiter, Base::GetAccessControlFilter, Base::hideAllFilter,
        Base::multipleEqualOperator, Base::ReadConfigurations, Base::RegisterValuesFunction, Base::repositoryName,
        Base::securityManager, Base::singleEqualOperator, Base::SplitCommaList, Base::valueMultiplicityDelimiter,
        Base::valueMultiplicityPrefix, Base::valueMultiplicitySuffix, Base::valuesFunctionFactories;

    WATCHED(std::string, HandleSingleConditionForUser, (const Condition& c, const Texts& v, Details* d), (c, v, d))
    WATCHED(std::string, HandleSingleCondition, (const Condition& c, const Texts& v, SecurityManagerInterface* s),
            (c, v, s))
    WATCHED(void, ReplaceSingleValueForUser, (std::string & v, const FieldDefinition& f, Details* d), (v, f, d))
    WATCHED(void, ReplaceSingleValue, (std::string & v, const FieldDefinition& f, SecurityManagerInterface* s),
            (v, f, s))
    WATCHED(void, ResolveUserField, (std::string & t, Details* d), (t, d))
    WATCHED(std::string, ApplyValuesFunction, (const std::string& v, const Condition& c), (v, c))
    WATCHED(bool, CheckPermissionInList, (PermissionListInterface * l, const PermissionBase& p), (l, p))
    WATCHED(bool, GetResourcesFromList, (PermissionListInterface * l, const std::string& n, unsigned v, Texts& r),
            (l, n, v, r))
};

#undef WATCHED

} // namespace secm::testing
