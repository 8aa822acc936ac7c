// How one field of the host's records is restricted: read once from the configuration, then only looked at.
#pragma once

#include "SECM_AccessControl/AccessControl_ValuesFunctionInterface.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct ConditionDefinition {
    std::string conditionText;                                             ///< The template; never empty.
    std::map<std::string, std::int32_t, std::less<>> mandatoryFields;      ///< Only membership counts.
    std::vector<std::string> replaceFields;                                ///< As written, duplicates kept.
    std::unique_ptr<AccessControl_ValuesFunctionInterface> valuesFunction; ///< Null: values go in as they are.
};

struct FieldDefinition {
    std::vector<ConditionDefinition> conditions; ///< At least one.
    std::string permissionName;                  ///< Never empty.
    std::uint32_t permissionValue = 0;
    std::string conditionsDelimiter; ///< Not empty when there are two conditions or more.
    std::string myField; ///< Names, between its first and its last character, the attribute "%my%" stands for.
};
