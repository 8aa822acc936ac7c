// Names that nobody reads: keys that no reader knows, and fields of repositories that do not exist.
#include "analysis/check/CheckRules.h"

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

// `isRead` says whether anybody reads an entry, `known` what the name of another was probably meant to be.
template <class IsRead>
void UnreadEntries(const CheckedTable& table, const Names& known, const IsRead& isRead, FindingSink& sink)
{
    for (const CFG_Entry& entry : table.entries) {
        if (!isRead(entry)) {
            sink.Warn("AC031", entry.place,
                      fmt::format("the {} '{}' is read by nobody", entry.isNode ? "table" : "key", entry.name),
                      "no user's filter changes by it, and what it was to set is missing",
                      DidYouMean(entry.name, known, "remove it"));
        }
    }
}

void UnreadSettings(const CheckedRepository& repository, FindingSink& sink)
{
    const auto isRead = [](const CFG_Entry& entry) { return !entry.isNode && IsOneOf(settingKeys, entry.name); };
    UnreadEntries(repository.table, Names(settingKeys.begin(), settingKeys.end()), isRead, sink);
}

// The keys of condition N for each number N that a key of the table ends in; N is 1 for keys that end in none.
Names NumberedKeysNear(const CheckedTable& table)
{
    Names near;
    for (const CFG_Entry& entry : table.entries) {
        const std::string number = entry.name.substr(entry.name.find_last_not_of("0123456789") + 1);
        for (const std::string_view base : numberedKeys) {
            near.push_back(fmt::format("{}{}", base, NumberOf(number, "") != 0 ? number : "1"));
        }
    }
    return near;
}

void UnreadDefinitionKeys(const CheckedDefinition& definition, FindingSink& sink)
{
    const auto isRead = [](const CFG_Entry& entry) {
        const auto isNumbered = [&](std::string_view base) { return NumberOf(entry.name, base) != 0; };
        return !entry.isNode && (IsOneOf(definitionKeys, entry.name) ||
                                 std::any_of(numberedKeys.begin(), numberedKeys.end(), isNumbered));
    };
    const auto& entries = definition.table.entries;
    if (!std::all_of(entries.begin(), entries.end(), isRead)) {
        Names known = NumberedKeysNear(definition.table);
        known.insert(known.end(), definitionKeys.begin(), definitionKeys.end());
        UnreadEntries(definition.table, known, isRead, sink);
    }
}

void UnreadSharedNames(FindingSink& sink)
{
    const Names tables = {"repositories", "fields"};
    const auto isRead = [&](const CFG_Entry& entry) { return entry.isNode && IsOneOf(tables, entry.name); };
    UnreadEntries({AccessControlPath(), {}}, tables, isRead, sink);
    UnreadEntries({RepositoriesPath(), {}}, {}, IsTable, sink);
    UnreadEntries({FieldsPath(), {}}, {}, IsTable, sink);
    for (const std::string& field : TableNames(FieldsPath())) {
        UnreadEntries({FieldsPath() + "\\" + field, {}}, {}, IsTable, sink);
    }
}

void FieldsOfNobody(FindingSink& sink)
{
    const Names repositories = TableNames(RepositoriesPath());
    const std::set<std::string_view> existing(repositories.begin(), repositories.end());
    std::map<std::string, std::string> remedies; // by the missing repository, which many fields may name
    const auto remedyFor = [&](const std::string& missing) {
        const auto [remedy, isNew] = remedies.try_emplace(missing);
        if (isNew) {
            remedy->second =
                DidYouMean(missing, repositories,
                           fmt::format("add repositories.{} with its settings, or remove the table", missing));
        }
        return remedy->second;
    };
    for (const std::string& field : TableNames(FieldsPath())) {
        for (const CFG_Entry& entry : CFG_ListEntries(FieldsPath() + "\\" + field)) {
            if (entry.isNode && existing.count(entry.name) == 0) {
                sink.Warn("AC032", entry.place,
                          fmt::format("the field '{}' is defined for '{}', and there is no such repository", field,
                                      entry.name),
                          fmt::format("it restricts nobody: users of the repository that was meant see records that it "
                                      "was to hide, and a host that asks for '{}' gets empty filters",
                                      entry.name),
                          remedyFor(entry.name));
            }
        }
    }
}

} // namespace

void CheckUnreadNames(const CheckedRepository& repository, FindingSink& sink)
{
    UnreadSettings(repository, sink);
    for (const CheckedDefinition& definition : repository.definitions) {
        UnreadDefinitionKeys(definition, sink);
    }
}

void CheckSharedUnreadNames(FindingSink& sink)
{
    UnreadSharedNames(sink);
    FieldsOfNobody(sink);
}

} // namespace secm::analysis
