// A manager that also knows the names and places of its rules in the configuration.
#pragma once

#include "SECM_AccessControl/SECM_AccessControlManager.h"
#include "analysis/definitions/DefinitionReader.h"
#include "analysis/definitions/Rules.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace secm::analysis {

class RulesManager : public SECM_AccessControlManager {
public:
    /// Reads as SECM_AccessControlInterface::CreateInstance does, and throws what that throws. Throws
    /// std::runtime_error when `definitions` does not fit, because the configuration changed since it was read. Does
    /// not keep `definitions`.
    RulesManager(const std::string& repository, const DefinitionReader& definitions);

    const RepositoryRules& Rules() const { return rules; }

    /// What the condition's values function makes of `value`; `value` itself when it has none. `condition` is one of
    /// Rules().
    std::string Mapped(const std::string& value, const ConditionRule& condition);

    /// The template `text` filled with `values` as the module fills it. No values function maps them, and tokens stay.
    /// `values` must not be empty and must not hold "%my%".
    std::string Filled(const std::string& text, const std::vector<std::string>& values);

    /// The names of the values functions that the module has, sorted.
    std::vector<std::string> FunctionNames() const;

    /// The tokens of a list in the configuration.
    std::vector<std::string> TokensOf(const std::string& list);

protected:
    /// The rule in Rules() of `condition`, which is one of this manager's own.
    const ConditionRule& RuleOf(const ConditionDefinition& condition) const;

private:
    void AddRules(const DefinitionReader& definitions);
    void AddRule(const FieldDefinition& definition, const DefinitionTable& table, const CFG_RepositoryServices& node);
    void AddOmitted(const DefinitionTable& table, std::vector<OmissionReason> reasons);

    RepositoryRules rules;
    std::unordered_map<const ConditionDefinition*, const ConditionRule*> rulesByCondition;
    std::unordered_map<const ConditionRule*, const ConditionDefinition*> conditionsByRule;
};

} // namespace secm::analysis
