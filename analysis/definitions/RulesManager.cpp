#include "analysis/definitions/RulesManager.h"

#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/configuration/ConfigurationPaths.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <utility>

namespace secm::analysis {
namespace {

// Whether the module read `definition` from `node`.
bool IsReadFrom(const FieldDefinition& definition, const CFG_RepositoryServices& node)
{
    const auto isSame = [&](const std::string& text, const std::string& key) { return text == TextOf(node, key); };
    unsigned number = 0;
    const auto isSameCondition = [&](const ConditionDefinition& condition) {
        return isSame(condition.conditionText, "condition" + std::to_string(++number));
    };
    const std::unique_ptr<const std::int32_t> bits(node.GetIntValue("permission_value"));
    return bits && static_cast<std::uint32_t>(*bits) == definition.permissionValue &&
           isSame(definition.permissionName, "permission_name") && isSame(definition.myField, "my_field") &&
           isSame(definition.conditionsDelimiter, "conditions_delimiter") &&
           std::all_of(definition.conditions.begin(), definition.conditions.end(), isSameCondition) &&
           isSame("", "condition" + std::to_string(definition.conditions.size() + 1));
}

// The module reads no fields for a repository that has no settings.
bool IsConfigured(const std::string& repository)
{
    const CFG_RepositoryServices* root = CFG_Factory::GetRepositoryServices();
    const std::unique_ptr<CFG_RepositoryServices> settings(
        root != nullptr ? root->GetSubTree(RWCString(configuration_paths::repositories + repository)) : nullptr);
    return settings != nullptr;
}

ConditionRule ConditionRuleOf(const ConditionDefinition& condition, unsigned number, const CFG_RepositoryServices& node)
{
    ConditionRule rule;
    rule.number = number;
    rule.text = condition.conditionText;
    rule.replaceTokens = condition.replaceFields;
    for (const auto& [token, unused] : condition.mandatoryFields) {
        rule.mandatoryTokens.push_back(token);
    }
    rule.function = TextOf(node, "values_function" + std::to_string(number));
    rule.functionConfiguration = TextOf(node, "values_function_config_string" + std::to_string(number));
    rule.isMapped = condition.valuesFunction != nullptr;
    return rule;
}

std::shared_ptr<FieldRule> RuleAt(const DefinitionTable& table)
{
    auto rule = std::make_shared<FieldRule>();
    rule->name = table.field;
    rule->path = table.path;
    rule->place = table.place;
    return rule;
}

[[noreturn]] void RefuseChanged(const std::string& repository)
{
    throw std::runtime_error(
        fmt::format("the configuration of the repository '{}' changed while it was read; read it again", repository));
}

} // namespace

std::string InWords(const std::vector<OmissionReason>& reasons)
{
    std::string words;
    for (const OmissionReason& reason : reasons) {
        words += (words.empty() ? "" : "; ") + reason.text;
    }
    return words;
}

RulesManager::RulesManager(const std::string& repository, const DefinitionReader& definitions)
    : SECM_AccessControlManager(repository), rules{repository,
                                                   {hideAllFilter, defaultFilter, filterDelimiter, singleEqualOperator,
                                                    multipleEqualOperator, valueMultiplicityDelimiter,
                                                    valueMultiplicityPrefix, valueMultiplicitySuffix},
                                                   {},
                                                   {}}
{
    if (!fieldDefinitions.empty() || IsConfigured(repository)) {
        AddRules(definitions);
    }
}

// Walks through the tables and the module's definitions side by side: both are in the order of the configuration, and
// the module has no definition for a table that it leaves out.
void RulesManager::AddRules(const DefinitionReader& definitions)
{
    auto next = fieldDefinitions.begin();
    for (const DefinitionTable& table : definitions.TablesOf(rules.repository)) {
        const std::unique_ptr<CFG_RepositoryServices> node(
            CFG_Factory::GetRepositoryServices()->GetSubTree(table.path));
        if (!node) {
            RefuseChanged(rules.repository);
        }
        std::vector<OmissionReason> reasons = ReasonsToOmit(*node);
        if (!reasons.empty()) {
            AddOmitted(table, std::move(reasons));
        } else if (next != fieldDefinitions.end() && IsReadFrom(**next, *node)) {
            AddRule(**next++, table, *node);
        } else {
            RefuseChanged(rules.repository);
        }
    }
    if (next != fieldDefinitions.end()) {
        RefuseChanged(rules.repository);
    }
}

void RulesManager::AddOmitted(const DefinitionTable& table, std::vector<OmissionReason> reasons)
{
    std::shared_ptr<FieldRule> rule = RuleAt(table);
    rule->omitted = std::move(reasons);
    rules.all.push_back(std::move(rule));
}

void RulesManager::AddRule(const FieldDefinition& definition, const DefinitionTable& table,
                           const CFG_RepositoryServices& node)
{
    std::shared_ptr<FieldRule> rule = RuleAt(table);
    rule->permissionName = definition.permissionName;
    rule->permissionValue = definition.permissionValue;
    rule->conditionsDelimiter = definition.conditionsDelimiter;
    rule->myField = definition.myField;
    for (const ConditionDefinition& condition : definition.conditions) {
        rule->conditions.push_back(
            ConditionRuleOf(condition, static_cast<unsigned>(rule->conditions.size() + 1), node));
    }
    for (const ConditionRule& condition : rule->conditions) {
        const ConditionDefinition& named = definition.conditions.at(condition.number - 1);
        rulesByCondition.emplace(&named, &condition);
        conditionsByRule.emplace(&condition, &named);
    }
    rules.fields.push_back(rule);
    rules.all.push_back(std::move(rule));
}

std::string RulesManager::Mapped(const std::string& value, const ConditionRule& condition)
{
    return SECM_AccessControlManager::ApplyValuesFunction(value, *conditionsByRule.at(&condition));
}

std::string RulesManager::Filled(const std::string& text, const std::vector<std::string>& values)
{
    ConditionDefinition condition;
    condition.conditionText = text;
    return HandleSingleConditionForUser(condition, values, nullptr);
}

std::vector<std::string> RulesManager::FunctionNames() const
{
    std::vector<std::string> names;
    for (const auto& [name, factory] : valuesFunctionFactories) {
        names.push_back(name);
    }
    return names;
}

std::vector<std::string> RulesManager::TokensOf(const std::string& list)
{
    std::vector<std::string> tokens;
    SplitCommaList(list, tokens);
    return tokens;
}

const ConditionRule& RulesManager::RuleOf(const ConditionDefinition& condition) const
{
    return *rulesByCondition.at(&condition);
}

} // namespace secm::analysis
