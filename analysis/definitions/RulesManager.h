// A manager that knows its rules by the names of the configuration.
#pragma once

#include "SECM_AccessControl/SECM_AccessControlManager.h"
#include "analysis/definitions/DefinitionReader.h"
#include "analysis/definitions/Rules.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace secm::analysis {

class RulesManager : public SECM_AccessControlManager {
public:
    /// Reads as CreateInstance does, and throws what it throws. Throws std::runtime_error when the configuration is
    /// another one than `definitions` was read from.
    RulesManager(const std::string& repository, const DefinitionReader& definitions);
    explicit RulesManager(const std::string& repository);

    const RepositoryRules& Rules() const { return rules; }

    /// What the condition's values function makes of `value`; `value` itself when it has none. `condition` is one of
    /// Rules().
    std::string Mapped(const std::string& value, const ConditionRule& condition);

    /// The names of the values functions that the module has, sorted.
    std::vector<std::string> FunctionNames() const;

    /// The tokens of a list in the configuration.
    std::vector<std::string> TokensOf(const std::string& list);

protected:
    /// What `condition`, of one of the definitions, is in Rules().
    const ConditionRule& RuleOf(const ConditionDefinition& condition) const;

private:
    void Name(const FieldDefinition& definition, const DefinitionTable& table, const CFG_RepositoryServices& node);

    RepositoryRules rules;
    std::unordered_map<const ConditionDefinition*, const ConditionRule*> rulesByCondition;
    std::unordered_map<const ConditionRule*, const ConditionDefinition*> conditionsByRule;
};

} // namespace secm::analysis
