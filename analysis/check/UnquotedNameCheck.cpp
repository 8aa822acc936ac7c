// Lists without quotes around names that the values functions give: a name such as "bill of lading" is then read as
// several words of the query. Each table is read once for all conditions that use it.
#include "analysis/check/CheckRules.h"

#include "analysis/check/FilledTemplate.h"
#include "analysis/check/OpenQuote.h"
#include "analysis/check/QueryText.h"
#include "analysis/check/WordCharacter.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/configuration/ConfigurationPaths.h"

#include <fmt/core.h>

#include <algorithm>
#include <map>
#include <regex>
#include <string>
#include <string_view>

namespace secm::analysis {

namespace {

// The first of the names that needs quotes; empty: none does.
struct NamesToQuote {
    void Add(const std::string& name)
    {
        const auto isDigit = [](char byte) { return byte >= '0' && byte <= '9'; };
        if (firstText.empty() && !std::all_of(name.begin(), name.end(), isDigit)) {
            firstText = name;
        }
        if (firstOfSeveralWords.empty() && !std::all_of(name.begin(), name.end(), IsWordCharacter)) {
            firstOfSeveralWords = name;
        }
    }

    std::string firstText; // no number
    std::string firstOfSeveralWords;
};

NamesToQuote NamesOfTable(const std::string& table)
{
    NamesToQuote names;
    const std::string path = configuration_paths::codeTables + table;
    for (const std::string& code : TableNames(path)) {
        names.Add(CFG_Factory::GetRepositoryServices()
                      ->GetValueByPath(fmt::format("{}\\{}\\display_name", path, code))
                      .data());
    }
    return names;
}

NamesToQuote Issuers()
{
    NamesToQuote names;
    const CFG_RepositoryServices* root = CFG_Factory::GetRepositoryServices();
    names.Add(root->GetValueByPath(std::string(configuration_paths::system) + configuration_paths::issuer).data());
    for (const std::string& site : TableNames(configuration_paths::sites)) {
        names.Add(
            root->GetValueByPath(std::string(configuration_paths::sites) + "\\" + site + configuration_paths::issuer)
                .data());
    }
    return names;
}

// What stands before the first value, as far as it says which texts need quotes there.
enum class Surroundings { other, sql, searchField };

Surroundings SurroundingsOf(const CheckedScope& scope)
{
    const std::string filled = FilledTemplate(scope).several;
    const std::string before = LowerCase(filled.substr(0, filled.find("value1")));
    if (!scope.condition.Has(valuesPlaceholder) || !OpenQuote(before).empty() ||
        scope.repository.Rules().settings.valueMultiplicityDelimiter.find_first_of("'\"") != std::string::npos) {
        return Surroundings::other;
    }
    static const std::regex sql(R"re([\s\S]*\s(=|<>|!=|in|like)\s*\(?\s*)re");
    static const std::regex searchField(R"re([\s\S]*[a-z0-9_]:\(?)re");
    return std::regex_match(before, sql)           ? Surroundings::sql
           : std::regex_match(before, searchField) ? Surroundings::searchField
                                                   : Surroundings::other;
}

void QuotesAreMissing(const CheckedScope& scope, const NamesToQuote& names, std::vector<Finding>& findings)
{
    if (names.firstText.empty()) {
        return;
    }
    const Surroundings surroundings = SurroundingsOf(scope);
    const std::string& name = surroundings == Surroundings::sql ? names.firstText : names.firstOfSeveralWords;
    if (surroundings != Surroundings::other && !name.empty()) {
        FindingSink(findings, scope.repository.Rules().repository)
            .Error("AC017", scope.PlaceOf("condition"),
                   fmt::format("{} has no quotes around %values%, and {} gives texts such as '{}'",
                               scope.condition.Key("condition"), scope.condition.rule->function, name),
                   "the query language reads their words as parts of the condition: users' filters break, or match "
                   "other records",
                   "write quotes around %values% and in value_multiplicity_delimiter, such as ('%values%') with "
                   "\"', '\"");
    }
}

} // namespace

void CheckUnquotedNames(const std::vector<CheckedRepository>& repositories, std::vector<Finding>& findings)
{
    std::map<std::string, NamesToQuote> tables;
    for (const CheckedScope& scope : ScopesMappedBy("CodeToDisplayName", repositories)) {
        const std::string& table = scope.condition.rule->functionConfiguration;
        auto found = tables.find(table);
        if (found == tables.end()) {
            found = tables.emplace(table, NamesOfTable(table)).first;
        }
        QuotesAreMissing(scope, found->second, findings);
    }
    if (const auto scopes = ScopesMappedBy("SiteIdToIssuer", repositories); !scopes.empty()) {
        const NamesToQuote issuers = Issuers();
        for (const CheckedScope& scope : scopes) {
            QuotesAreMissing(scope, issuers, findings);
        }
    }
}

} // namespace secm::analysis
