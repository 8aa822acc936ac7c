// The code tables by which CodeToDisplayName maps values. Each is read once for all conditions that name it.
#include "analysis/check/CheckRules.h"

#include "analysis/check/EmptyValue.h"
#include "analysis/check/Spelling.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/configuration/ConfigurationPaths.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace secm::analysis {

namespace {

struct CodeTable {
    CodeTable(std::string tableName, std::vector<CheckedScope> namedBy)
        : name(std::move(tableName)), path(configuration_paths::codeTables + name), scopes(std::move(namedBy)),
          codes(CFG_ListEntries(path))
    {
    }

    bool Exists() const
    {
        const std::unique_ptr<CFG_RepositoryServices> node(CFG_Factory::GetRepositoryServices()->GetSubTree(path));
        return node != nullptr;
    }

    std::string name; // empty when the conditions name none
    std::string path;
    std::vector<CheckedScope> scopes; // the conditions that name it
    std::vector<CFG_Entry> codes;
};

std::string ListedNames(const std::vector<std::string>& names)
{
    constexpr std::size_t most = 5;
    const std::size_t shown = std::min(names.size(), most);
    return fmt::format("{}{}", fmt::join(names.begin(), names.begin() + static_cast<std::ptrdiff_t>(shown), ", "),
                       names.size() > shown ? ", ..." : "");
}

void EmptyTable(const CodeTable& table, std::vector<Finding>& findings)
{
    const bool exists = table.Exists();
    if (exists && !table.codes.empty()) {
        return;
    }
    const std::string add = "add [zarvona.system.applications.codes.TABLE.CODE] for each code";
    const std::string tables = configuration_paths::codeTables;
    const std::string remedy =
        exists ? add : DidYouMean(table.name, TableNames(tables.substr(0, tables.size() - 1)), add);
    for (const CheckedScope& scope : table.scopes) {
        FindingSink sink(findings, scope.repository.Rules().repository);
        const auto warn = [&](const char* key, std::string problem) {
            sink.Warn("AC024", scope.PlaceOf(key), std::move(problem), everyValueIsEmpty, remedy);
        };
        if (table.name.empty()) {
            const std::string key = scope.condition.Key("values_function_config_string");
            const std::vector<std::string> known = TableNames(tables.substr(0, tables.size() - 1));
            sink.Warn("AC024", scope.PlaceOf("values_function"), key + " names no code table", everyValueIsEmpty,
                      fmt::format("write {} = \"{}\", with the name of a code table{}", key,
                                  known.size() == 1 ? known.front() : "TABLE",
                                  known.size() > 1 ? fmt::format(": {}", ListedNames(known)) : ""));
        } else if (!exists) {
            warn("values_function_config_string", fmt::format("there is no code table '{}'", table.name));
        } else {
            warn("values_function_config_string", fmt::format("the code table '{}' holds no code", table.name));
        }
    }
}

void MisspeltDisplayName(const CheckedTable& code, FindingSink& sink)
{
    for (const CFG_Entry& key : code.entries) {
        if (key.name != "display_name" && !Nearest(key.name, {"display_name"}).empty()) {
            sink.Error("AC031", key.place, fmt::format("the key '{}' is read by nobody", key.name), thisValueIsEmpty,
                       "did you mean 'display_name'?");
        }
    }
}

void CodesWithoutName(const CodeTable& table, FindingSink& sink)
{
    for (const CFG_Entry& entry : table.codes) {
        const CheckedTable code(table.path + "\\" + entry.name, entry.place);
        if (code.Text("display_name").empty()) {
            sink.Warn("AC025", entry.place, fmt::format("the code '{}' has no display_name", entry.name),
                      thisValueIsEmpty, "write its display_name");
        }
        MisspeltDisplayName(code, sink);
    }
}

} // namespace

void CheckCodeTables(const std::vector<CheckedRepository>& repositories, std::vector<Finding>& findings)
{
    std::map<std::string, std::vector<CheckedScope>> scopesByTable;
    for (const CheckedScope& scope : ScopesMappedBy("CodeToDisplayName", repositories)) {
        scopesByTable[scope.condition.rule->functionConfiguration].push_back(scope);
    }
    FindingSink shared(findings, "");
    for (auto& [name, scopes] : scopesByTable) {
        const CodeTable table(name, std::move(scopes));
        EmptyTable(table, findings);
        CodesWithoutName(table, shared);
    }
}

} // namespace secm::analysis
