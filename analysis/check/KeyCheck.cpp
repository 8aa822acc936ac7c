// Names that nobody reads.
#include "analysis/check/ConfigurationCheck.h"

#include "analysis/check/Spelling.h"
#include "analysis/definitions/KnownKeys.h"

#include <functional>

namespace secm::analysis {

namespace {

using Names = std::vector<std::string>;
using IsRead = std::function<bool(const CFG_Entry& entry)>;

bool IsTable(const CFG_Entry& entry)
{
    return entry.isNode;
}

// `known`: what a key may have been meant to be.
void UnreadKeys(const CheckedTable& table, const Names& known, const IsRead& isRead, Report& report)
{
    for (const CFG_Entry& entry : table.entries) {
        if (!isRead(entry)) {
            report.Warn("AC031", entry.place,
                        (entry.isNode ? "the table '" : "the key '") + entry.name + "' is read by nobody",
                        "no user's filter changes by it, and what it was to set is missing",
                        DidYouMean(entry.name, known, "remove it"));
        }
    }
}

// Keys of condition N, with the numbers that the table's keys end in; 1 where they end in none.
Names NumberedKeysNear(const CheckedTable& table)
{
    Names near;
    for (const CFG_Entry& entry : table.entries) {
        const std::string number = entry.name.substr(entry.name.find_last_not_of("0123456789") + 1);
        for (const std::string& base : numberedKeys) {
            near.push_back(base + (NumberOf(number, "") != 0 ? number : "1"));
        }
    }
    return near;
}

void UnreadDefinitionKeys(const CheckedDefinition& definition, Report& report)
{
    Names known = NumberedKeysNear(definition.table);
    known.insert(known.end(), definitionKeys.begin(), definitionKeys.end());
    const auto isRead = [](const CFG_Entry& entry) {
        const auto isNumbered = [&](const std::string& base) { return NumberOf(entry.name, base) != 0; };
        return !entry.isNode && (IsOneOf(definitionKeys, entry.name) ||
                                 std::any_of(numberedKeys.begin(), numberedKeys.end(), isNumbered));
    };
    UnreadKeys(definition.table, known, isRead, report);
}

void UnreadSharedKeys(Report& report)
{
    const Names tables = {"repositories", "fields"};
    const auto isRead = [&](const CFG_Entry& entry) { return entry.isNode && IsOneOf(tables, entry.name); };
    UnreadKeys({AccessControlPath(), {}}, tables, isRead, report);
    UnreadKeys({RepositoriesPath(), {}}, {}, IsTable, report);
    UnreadKeys({FieldsPath(), {}}, {}, IsTable, report);
    for (const std::string& field : TableNames(FieldsPath())) {
        UnreadKeys({FieldsPath() + "\\" + field, {}}, {}, IsTable, report);
    }
}

void FieldsOfNobody(Report& report)
{
    const Names repositories = TableNames(RepositoriesPath());
    for (const std::string& field : TableNames(FieldsPath())) {
        for (const CFG_Entry& entry : CFG_ListEntries(FieldsPath() + "\\" + field)) {
            if (entry.isNode && !IsOneOf(repositories, entry.name)) {
                report.Warn("AC032", entry.place,
                            "the field '" + field + "' is defined for '" + entry.name +
                                "', and there is no such repository",
                            "it restricts nobody: users of the repository that was meant see records that it was to "
                            "hide, and a host that asks for '" +
                                entry.name + "' gets empty filters",
                            DidYouMean(entry.name, repositories,
                                       "add repositories." + entry.name + " with its settings, or remove the table"));
            }
        }
    }
}

} // namespace

void CheckKeys(const CheckedRepository& repository, Report& report)
{
    const auto isRead = [](const CFG_Entry& entry) { return !entry.isNode && IsOneOf(settingKeys, entry.name); };
    UnreadKeys(repository.table, settingKeys, isRead, report);
    for (const CheckedDefinition& definition : repository.definitions) {
        UnreadDefinitionKeys(definition, report);
    }
}

void CheckSharedKeys(Report& report)
{
    UnreadSharedKeys(report);
    FieldsOfNobody(report);
}

} // namespace secm::analysis
