// The rule that restricts one field of the host's records. Read once from the configuration, read-only afterwards.
#pragma once

#include "SECM_AccessControl/AccessControl_ValuesFunctionInterface.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct ConditionDefinition {
    std::string conditionText;                                             ///< The template; never empty.
    std::map<std::string, std::int32_t, std::less<>> mandatoryFields;      ///< Used as a set.
    std::vector<std::string> replaceFields;                                ///< Tokens as written, with duplicates.
    std::unique_ptr<AccessControl_ValuesFunctionInterface> valuesFunction; ///< Null: values are not mapped.
};

struct FieldDefinition {
    std::vector<ConditionDefinition> conditions; ///< At least one.
    std::string permissionName;                  ///< Never empty.
    std::uint32_t permissionValue = 0;
    std::string conditionsDelimiter; ///< Not empty when there are several conditions.
    std::string myField; ///< The framed name ("$region$") of the attribute that "%my%" stands for; empty: none.
};
