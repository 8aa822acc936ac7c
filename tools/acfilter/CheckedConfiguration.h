// The configuration as the module reads it and, beside that, where everything stands.
#pragma once

#include "SECM_AccessControl/SECM_AccessControlManager.h"
#include "SECM_AccessControl/TemplateLanguage.h"
#include "platform/configuration/CFG_Listing.h"
#include "tools/acfilter/FieldReading.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Shows what the module has read.
class CheckedManager : public SECM_AccessControlManager {
public:
    using SECM_AccessControlManager::ApplyValuesFunction;
    using SECM_AccessControlManager::defaultFilter;
    using SECM_AccessControlManager::fieldDefinitions;
    using SECM_AccessControlManager::filterDelimiter;
    using SECM_AccessControlManager::hideAllFilter;
    using SECM_AccessControlManager::multipleEqualOperator;
    using SECM_AccessControlManager::SECM_AccessControlManager;
    using SECM_AccessControlManager::singleEqualOperator;
    using SECM_AccessControlManager::SplitCommaList;
    using SECM_AccessControlManager::valueMultiplicityDelimiter;
    using SECM_AccessControlManager::valueMultiplicityPrefix;
    using SECM_AccessControlManager::valueMultiplicitySuffix;
    using SECM_AccessControlManager::valuesFunctionFactories;
};

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
    bool Has(std::string_view text) const { return read->conditionText.find(text) != std::string::npos; }
    bool HasToken() const; ///< The template holds one of `tokens`.
    std::string Key(const char* base) const { return base + std::to_string(number); }

    const ConditionDefinition* read; ///< The manager's.
    unsigned number;
    std::vector<std::string> tokens; ///< Those to be replaced that the module will not pass over, each once.
    bool fillsTokens; ///< For "%my%"; else that has become something else before the tokens are looked at.
};

struct CheckedDefinition {
    std::string field;
    CheckedTable table;
    std::vector<DiscardReason> discarded;
    const FieldDefinition* read; ///< The manager's; null: left out.
    std::vector<CheckedCondition> conditions;
};

struct CheckedRepository {
    std::string name;
    CheckedTable table;
    std::unique_ptr<CheckedManager> manager;
    std::vector<CheckedDefinition> definitions; ///< In the manager's order.
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
