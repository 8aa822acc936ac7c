// The configuration as the module reads it and, beside that, where everything stands.
#pragma once

#include "SECM_AccessControl/TemplateLanguage.h"
#include "analysis/definitions/RulesManager.h"
#include "platform/configuration/CFG_Listing.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace secm::analysis {

/// A table with what stands directly in it.
struct CheckedTable {
    CheckedTable(std::string tablePath, CFG_Place tablePlace);

    const CFG_Entry* Find(const std::string& key) const; ///< Null: there is none.
    std::string Text(const std::string& key) const;      ///< As the module takes it: what is missing is empty.
    std::string Lack(const std::string& key) const;      ///< "KEY is missing", or "KEY is empty".
    /// Of the key or, where it is missing, of the table's own name.
    const CFG_Place& PlaceOf(const std::string& key) const;

    std::string path;
    CFG_Place place;
    std::vector<CFG_Entry> entries;
};

struct CheckedCondition {
    bool Has(std::string_view text) const { return rule->text.find(text) != std::string::npos; }
    bool HasToken() const; ///< The template holds one of `tokens`.
    std::string Key(const char* base) const { return base + std::to_string(rule->number); }

    const ConditionRule* rule;
    std::vector<std::string> tokens; ///< Those to be replaced that the module will not pass over, each once.
    bool fillsTokens; ///< For "%my%"; else that has become something else before the tokens are looked at.
};

struct CheckedDefinition {
    bool IsInForce() const { return rule->omitted.empty(); }

    std::shared_ptr<const FieldRule> rule;
    CheckedTable table;
    std::vector<CheckedCondition> conditions;
};

struct CheckedRepository {
    std::string name;
    CheckedTable table;
    std::unique_ptr<RulesManager> manager;
    std::vector<CheckedDefinition> definitions; ///< In the order of the configuration.
};

/// One condition in its surroundings.
struct CheckedScope {
    const CFG_Place& PlaceOf(const char* base) const { return definition.table.PlaceOf(condition.Key(base)); }
    std::string Text(const char* base) const { return definition.table.Text(condition.Key(base)); }

    const CheckedRepository& repository;
    const CheckedDefinition& definition;
    const CheckedCondition& condition;
};

/// The paths of the tables that hold everything about filters, all repositories' settings, and all fields.
std::string AccessControlPath();
std::string RepositoriesPath();
std::string FieldsPath();

/// The names of the tables directly under `path`, in their order.
std::vector<std::string> TableNames(const std::string& path);

/// The repository `name`, or all when it is null; empty when there is none.
std::vector<CheckedRepository> ReadRepositories(const std::string* name);

} // namespace secm::analysis
