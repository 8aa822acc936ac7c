// Names that nobody reads: keys that no reader knows, and fields of repositories that do not exist.
#include "analysis/check/CheckRules.h"

#include "SECM_AccessControl/TemplateLanguage.h"
#include "analysis/check/MisplacedTables.h"
#include "analysis/check/Spelling.h"
#include "analysis/definitions/KnownKeys.h"

#include <fmt/core.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace secm::analysis {

namespace {

using Names = std::vector<std::string>;

bool IsTable(const CFG_Entry& entry)
{
    return entry.isNode;
}

// Whether a value that nobody reads was to be a part of a filter.
bool HasPlaceholder(const std::string& value)
{
    return value.find(valuesPlaceholder) != std::string::npos ||
           value.find(equalOperatorPlaceholder) != std::string::npos;
}

// `isRead` says whether anybody reads an entry, `known` what the name of another was probably meant to be. Only a name
// that resembles none of them cannot have been meant to restrict: it may be a note.
template <class IsRead, class Known>
void UnreadEntries(const CheckedTable& table, const Known& known, const IsRead& isRead, FindingSink& sink)
{
    for (const CFG_Entry& entry : table.entries) {
        if (isRead(entry)) {
            continue;
        }
        const std::string problem =
            fmt::format("the {} '{}' is read by nobody", entry.isNode ? "table" : "key", entry.name);
        const Names names = known(entry.name);
        if (!Nearest(entry.name, names).empty() || HasPlaceholder(entry.value)) {
            sink.Error("AC031", entry.place, problem,
                       "what it was to set is missing: where it was to restrict, users see more than was meant",
                       DidYouMean(entry.name, names, "remove it"));
        } else {
            sink.Warn("AC031", entry.place, problem, "no user's filter changes by it",
                      "remove it; notes stand behind #");
        }
    }
}

void UnreadSettings(const CheckedRepository& repository, FindingSink& sink)
{
    const bool isDefinition = HoldsDefinition(repository.table.entries); // AC036
    const auto isRead = [&](const CFG_Entry& entry) {
        return !entry.isNode && (isDefinition || IsOneOf(settingKeys, entry.name));
    };
    UnreadEntries(
        repository.table, [](const std::string&) { return Names(settingKeys.begin(), settingKeys.end()); }, isRead,
        sink);
}

// The keys of a definition that `key` may have been meant to be: those of its own number; of 1 when it has none.
Names DefinitionKeysFor(const std::string& key)
{
    const std::string number = key.substr(key.find_last_not_of("0123456789") + 1);
    Names names(definitionKeys.begin(), definitionKeys.end());
    for (const std::string_view base : numberedKeys) {
        names.push_back(fmt::format("{}{}", base, NumberOf(number, "") != 0 ? number : "1"));
    }
    return names;
}

void UnreadDefinitionKeys(const CheckedDefinition& definition, FindingSink& sink)
{
    const auto isRead = [](const CFG_Entry& entry) {
        const auto isNumbered = [&](std::string_view base) { return NumberOf(entry.name, base) != 0; };
        return !entry.isNode && (IsOneOf(definitionKeys, entry.name) ||
                                 std::any_of(numberedKeys.begin(), numberedKeys.end(), isNumbered));
    };
    UnreadEntries(definition.table, DefinitionKeysFor, isRead, sink);
}

// Values in a table that holds tables only. AC036 names the right place for a whole definition or repository.
void TablesOnly(const std::string& path, FindingSink& sink)
{
    const CheckedTable table(path, {});
    if (!HoldsSettings(table.entries) && !HoldsDefinition(table.entries)) {
        const auto known = [](const std::string& key) {
            Names names = DefinitionKeysFor(key);
            names.insert(names.end(), settingKeys.begin(), settingKeys.end());
            return names;
        };
        UnreadEntries(table, known, IsTable, sink);
    }
}

void UnreadSharedNames(FindingSink& sink)
{
    const Names tables = {"repositories", "fields"};
    const auto isRead = [&](const CFG_Entry& entry) { return entry.isNode && IsOneOf(tables, entry.name); };
    UnreadEntries(
        CheckedTable(AccessControlPath(), {}), [&](const std::string&) { return Names(tables); }, isRead, sink);
    TablesOnly(RepositoriesPath(), sink);
    TablesOnly(FieldsPath(), sink);
    for (const std::string& field : TableNames(FieldsPath())) {
        TablesOnly(FieldsPath() + "\\" + field, sink);
    }
}

// The fields that repositories were meant to have, of repositories that do not exist.
class FieldsOfNobody {
public:
    FieldsOfNobody(const std::set<std::string>& misplacedRepositories, FindingSink& into)
        : sink(into), repositories(TableNames(RepositoriesPath())), existing(repositories.begin(), repositories.end())
    {
        const Names names = TableNames(FieldsPath());
        fields.insert(names.begin(), names.end());
        existing.insert(misplacedRepositories.begin(), misplacedRepositories.end()); // AC036
    }

    void Run()
    {
        for (const std::string& field : fields) {
            for (const CFG_Entry& entry : CFG_ListEntries(FieldsPath() + "\\" + field)) {
                if (entry.isNode && existing.count(entry.name) == 0) {
                    Report(field, entry);
                }
            }
        }
    }

private:
    void Report(const std::string& field, const CFG_Entry& entry)
    {
        sink.Error(
            "AC032", entry.place,
            fmt::format("the field '{}' is defined for '{}', and there is no such repository", field, entry.name),
            fmt::format("it restricts nobody: users of the repository that was meant see records that it was "
                        "to hide, and a host that asks for '{}' gets empty filters",
                        entry.name),
            existing.count(field) != 0
                ? fmt::format("the field comes before the repository: write fields.{}.{}", entry.name, field)
                : RemedyFor(entry.name));
    }

    const std::string& RemedyFor(const std::string& missing)
    {
        const auto [remedy, isNew] = remedies.try_emplace(missing);
        if (isNew) {
            remedy->second =
                DidYouMean(missing, repositories,
                           fmt::format("add repositories.{} with its settings, or remove the table", missing));
        }
        return remedy->second;
    }

    FindingSink& sink;
    Names repositories;
    std::set<std::string> existing;
    std::set<std::string> fields;
    std::map<std::string, std::string> remedies; // by the missing repository, which many fields may name
};

} // namespace

void CheckUnreadNames(const CheckedRepository& repository, FindingSink& sink)
{
    UnreadSettings(repository, sink);
    for (const CheckedDefinition& definition : repository.definitions) {
        UnreadDefinitionKeys(definition, sink);
    }
}

void CheckSharedUnreadNames(const std::set<std::string>& misplacedRepositories, FindingSink& sink)
{
    UnreadSharedNames(sink);
    if (misplacedRepositories.count("*") == 0) {
        FieldsOfNobody(misplacedRepositories, sink).Run();
    }
}

} // namespace secm::analysis
