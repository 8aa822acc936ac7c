#include "tools/acfilter/CheckedConfiguration.h"

#include "SECM_AccessControl/ConfigurationPaths.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "tools/acfilter/KnownKeys.h"

#include <algorithm>
#include <stdexcept>

namespace {

std::string ParentOf(const std::string& path)
{
    return path.substr(0, path.rfind('\\'));
}

CheckedCondition ReadCondition(CheckedManager& manager, const FieldDefinition& field, const ConditionDefinition& read,
                               unsigned number)
{
    CheckedCondition condition{&read, number, {}, false};
    for (const std::string& token : read.replaceFields) {
        if (IsFramed(token) && !IsOneOf(condition.tokens, token)) {
            condition.tokens.push_back(token);
        }
    }
    condition.fillsTokens =
        field.myField.empty() && manager.ApplyValuesFunction(std::string(ownValue), read) == ownValue;
    return condition;
}

CheckedRepository ReadRepository(const CFG_Entry& entry)
{
    CheckedRepository repository{entry.name,
                                 {RepositoriesPath() + "\\" + entry.name, entry.place},
                                 std::make_unique<CheckedManager>(entry.name),
                                 {}};
    CheckedManager& manager = *repository.manager;
    std::size_t taken = 0;
    for (const std::string& field : TableNames(FieldsPath())) {
        const CheckedTable fieldTable(FieldsPath() + "\\" + field, {});
        const CFG_Entry* found = fieldTable.Find(entry.name);
        if (found == nullptr || !found->isNode) {
            continue;
        }
        CheckedDefinition definition{field, {fieldTable.path + "\\" + entry.name, found->place}, {}, nullptr, {}};
        const std::unique_ptr<CFG_RepositoryServices> node(
            CFG_Factory::GetRepositoryServices()->GetSubTree(definition.table.path));
        definition.discarded = DiscardReasons(*node);
        if (definition.discarded.empty()) {
            definition.read = manager.fieldDefinitions.at(taken++).get();
            for (const ConditionDefinition& read : definition.read->conditions) {
                const auto number = static_cast<unsigned>(definition.conditions.size() + 1);
                definition.conditions.push_back(ReadCondition(manager, *definition.read, read, number));
            }
        }
        repository.definitions.push_back(std::move(definition));
    }
    if (taken != manager.fieldDefinitions.size()) {
        throw std::logic_error("the module reads other fields of '" + entry.name + "' than this check does");
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

std::vector<CheckedRepository> ReadRepositories(const std::string* name)
{
    std::vector<CheckedRepository> repositories;
    for (const CFG_Entry& entry : CFG_ListEntries(RepositoriesPath())) {
        if (entry.isNode && (name == nullptr || entry.name == *name)) {
            repositories.push_back(ReadRepository(entry));
        }
    }
    return repositories;
}
