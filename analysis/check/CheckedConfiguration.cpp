#include "analysis/check/CheckedConfiguration.h"

#include "SECM_AccessControl/TemplateLanguage.h"
#include "analysis/definitions/KnownKeys.h"
#include "platform/configuration/CFG_Listing.h"
#include "platform/configuration/ConfigurationPaths.h"

#include <algorithm>
#include <utility>

namespace secm::analysis {

namespace {

std::string ParentOf(const std::string& path)
{
    return path.substr(0, path.rfind('\\'));
}

CheckedCondition CheckedConditionOf(const ConditionRule& rule, const FieldRule& field, RulesManager& manager)
{
    CheckedCondition condition{&rule, {}, false};
    for (const std::string& token : rule.replaceTokens) {
        if (IsFramed(token) && !IsOneOf(condition.tokens, token)) {
            condition.tokens.push_back(token);
        }
    }
    condition.fillsTokens = field.myField.empty() && manager.Mapped(std::string(ownValue), rule) == ownValue;
    return condition;
}

CheckedRepository ReadRepository(const CFG_Entry& entry, const DefinitionReader& reader)
{
    CheckedRepository repository{
        std::make_unique<RulesManager>(entry.name, reader), {RepositoriesPath() + "\\" + entry.name, entry.place}, {}};
    for (const auto& rule : repository.Rules().all) {
        CheckedDefinition definition{rule, {rule->path, rule->place}, {}};
        for (const ConditionRule& condition : rule->conditions) {
            definition.conditions.push_back(CheckedConditionOf(condition, *rule, *repository.manager));
        }
        repository.definitions.push_back(std::move(definition));
    }
    return repository;
}

} // namespace

CheckedTable::CheckedTable(std::string tablePath, CFG_Place tablePlace)
    : path(std::move(tablePath)), place(std::move(tablePlace)), entries(CFG_ListEntries(path))
{
}

const CFG_Entry* CheckedTable::Find(const std::string& key) const
{
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](const CFG_Entry& entry) { return entry.name == key; });
    return found != entries.end() ? &*found : nullptr;
}

std::string CheckedTable::Text(const std::string& key) const
{
    const CFG_Entry* entry = Find(key);
    return entry != nullptr ? entry->value.c_str() : ""; // up to the first NUL
}

std::string CheckedTable::Lack(const std::string& key) const
{
    return key + (Find(key) != nullptr ? " is empty" : " is missing");
}

const CFG_Place& CheckedTable::PlaceOf(const std::string& key) const
{
    const CFG_Entry* entry = Find(key);
    return entry != nullptr ? entry->place : place;
}

bool CheckedCondition::HasToken() const
{
    return std::any_of(tokens.begin(), tokens.end(), [&](const std::string& token) { return Has(token); });
}

std::vector<CheckedScope> ScopesMappedBy(std::string_view function, const std::vector<CheckedRepository>& repositories)
{
    std::vector<CheckedScope> scopes;
    for (const CheckedRepository& repository : repositories) {
        for (const CheckedDefinition& definition : repository.definitions) {
            for (const CheckedCondition& condition : definition.conditions) {
                if (condition.rule->isMapped && condition.rule->function == function) {
                    scopes.push_back({repository, definition, condition});
                }
            }
        }
    }
    return scopes;
}

std::string AccessControlPath()
{
    return ParentOf(FieldsPath());
}

std::string RepositoriesPath()
{
    return ParentOf(configuration_paths::repositories); // which ends in a separator
}

std::string FieldsPath()
{
    return configuration_paths::fields;
}

std::vector<std::string> TableNames(const std::string& path)
{
    std::vector<std::string> names;
    for (const CFG_Entry& entry : CFG_ListEntries(path)) {
        if (entry.isNode) {
            names.push_back(entry.name);
        }
    }
    return names;
}

std::vector<CheckedRepository> ReadRepositories(const std::optional<std::string>& name)
{
    const DefinitionReader reader;
    std::vector<CheckedRepository> repositories;
    for (const CFG_Entry& entry : CFG_ListEntries(RepositoriesPath())) {
        if (entry.isNode && (!name || entry.name == *name)) {
            repositories.push_back(ReadRepository(entry, reader));
        }
    }
    return repositories;
}

} // namespace secm::analysis
