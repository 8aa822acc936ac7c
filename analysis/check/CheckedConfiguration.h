// What the checks know of a configuration beside its rules: what stands in each table, and where.
#pragma once

#include "analysis/definitions/RulesManager.h"
#include "platform/configuration/CFG_Listing.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace secm::analysis {

/// A table with its entries.
struct CheckedTable {
    CheckedTable(std::string tablePath, CFG_Place tablePlace);

    const CFG_Entry* Find(const std::string& key) const; ///< Null when there is none.
    std::string Text(const std::string& key) const;      ///< As the module reads it; empty when the key is missing.
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

    const ConditionRule* rule;       ///< One of the definition's.
    std::vector<std::string> tokens; ///< The framed ones of replace_fieldsN, each once.
    /// The module fills them in for the value "%my%". False: my_field or the values function replaces "%my%" before.
    bool fillsTokens;
};

struct CheckedDefinition {
    bool IsInForce() const { return rule->omitted.empty(); }

    std::shared_ptr<const FieldRule> rule;
    CheckedTable table;
    std::vector<CheckedCondition> conditions; ///< None when the module left the definition out.
};

struct CheckedRepository {
    const RepositoryRules& Rules() const { return manager->Rules(); }

    std::unique_ptr<RulesManager> manager;
    CheckedTable table;
    std::vector<CheckedDefinition> definitions; ///< In the order of the configuration.
};

/// One condition with what it belongs to. All must outlive it.
struct CheckedScope {
    const CFG_Place& PlaceOf(const char* base) const { return definition.table.PlaceOf(condition.Key(base)); }
    std::string Text(const char* base) const { return definition.table.Text(condition.Key(base)); }

    const CheckedRepository& repository;
    const CheckedDefinition& definition;
    const CheckedCondition& condition;
};

/// The conditions of all repositories whose values the module maps by `function`.
std::vector<CheckedScope> ScopesMappedBy(std::string_view function, const std::vector<CheckedRepository>& repositories);

/// The paths of the tables that hold everything about filters, all repositories' settings, and all fields.
std::string AccessControlPath();
std::string RepositoriesPath();
std::string FieldsPath();

/// The names of the tables directly under `path`, in their order.
std::vector<std::string> TableNames(const std::string& path);

/// The repository `name`, or all; empty when there is none.
std::vector<CheckedRepository> ReadRepositories(const std::optional<std::string>& name);

} // namespace secm::analysis
