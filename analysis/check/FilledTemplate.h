// A condition's template filled with made-up values, to see what the module makes of it.
#pragma once

#include "SECM_AccessControl/TemplateLanguage.h"
#include "analysis/check/CheckedConfiguration.h"

#include <string>

namespace secm::analysis {

/// The values are words. Tokens stay as they are written.
struct FilledTemplate {
    explicit FilledTemplate(const CheckedScope& scope)
        : one(scope.repository.manager->Filled(scope.condition.rule->text, {"value1"})),
          several(scope.condition.Has(valuesPlaceholder)
                      ? scope.repository.manager->Filled(scope.condition.rule->text, {"value1", "value2"})
                      : one)
    {
    }

    std::string one;
    std::string several; ///< The same as `one` when the template has no %values%.
};

} // namespace secm::analysis
