// What a condition looks up for its values and its user: values functions with their tables, and tokens.
#include "analysis/check/ConfigurationCheck.h"

#include "analysis/check/Spelling.h"
#include "analysis/definitions/KnownKeys.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/configuration/ConfigurationPaths.h"

#include <algorithm>

namespace secm::analysis {

namespace {

constexpr const char* thisValueIsEmpty =
    "users granted it get the empty text in its place: that matches records in which the field is empty or, where the "
    "template makes a pattern of it, every record";
constexpr const char* everyValueIsEmpty =
    "every value becomes the empty text in this condition: users see records in which the field is empty or, where the "
    "template makes a pattern of it, every record";

bool Maps(const CheckedScope& scope, const char* function)
{
    return scope.condition.rule->isMapped && scope.Text("values_function") == function;
}

std::string Quoted(std::string_view text)
{
    return "'" + std::string(text) + "'";
}

void UnknownFunction(const CheckedScope& scope, Report& report)
{
    const std::string name = scope.Text("values_function");
    if (!name.empty() && !scope.condition.rule->isMapped) {
        const std::vector<std::string> registered = scope.repository.manager->FunctionNames();
        std::string list;
        for (const std::string& known : registered) {
            list += (list.empty() ? "" : " or ") + known;
        }
        report.Error("AC006", scope.PlaceOf("values_function"), "there is no values function " + Quoted(name),
                     "users' values go into " + scope.condition.Key("condition") +
                         " as they were granted, unmapped: they may match records that nobody meant",
                     DidYouMean(name, registered, "write " + list));
    }
}

void EmptyCodeTable(const CheckedScope& scope, Report& report)
{
    if (!Maps(scope, "CodeToDisplayName")) {
        return;
    }
    const std::string name = scope.Text("values_function_config_string");
    const std::string tables = configuration_paths::codeTables;
    const CFG_Place& place =
        name.empty() ? scope.PlaceOf("values_function") : scope.PlaceOf("values_function_config_string");
    const char* remedy = "add [zarvona.system.applications.codes.TABLE.CODE] for each code";
    const std::unique_ptr<CFG_RepositoryServices> table(
        CFG_Factory::GetRepositoryServices()->GetSubTree(RWCString(tables + name)));
    if (!table) {
        report.Warn("AC024", place,
                    name.empty() ? "values_function_config_string" + std::to_string(scope.condition.rule->number) +
                                       " names no code table"
                                 : "there is no code table " + Quoted(name),
                    everyValueIsEmpty, DidYouMean(name, TableNames(tables.substr(0, tables.size() - 1)), remedy));
    } else if (CFG_ListEntries(tables + name).empty()) {
        report.Warn("AC024", place, "the code table " + Quoted(name) + " holds no code", everyValueIsEmpty, remedy);
    }
}

void CodesWithoutName(const CheckedScope& scope, Report& report)
{
    if (!Maps(scope, "CodeToDisplayName")) {
        return;
    }
    const std::string path = configuration_paths::codeTables + scope.Text("values_function_config_string");
    Report shared = report.Shared();
    for (const CFG_Entry& code : CFG_ListEntries(path)) {
        const CheckedTable table(path + "\\" + code.name, code.place);
        if (table.Text("display_name").empty()) {
            shared.Warn("AC025", code.place, "the code " + Quoted(code.name) + " has no display_name", thisValueIsEmpty,
                        "write its display_name");
        }
        for (const CFG_Entry& key : table.entries) {
            if (key.name != "display_name" && !Nearest(key.name, {"display_name"}).empty()) {
                shared.Warn("AC031", key.place, "the key " + Quoted(key.name) + " is read by nobody",
                            "no user's filter changes by it; what it was to set is missing",
                            "did you mean 'display_name'?");
            }
        }
    }
}

bool HasIssuer(const std::string& path)
{
    return *CFG_Factory::GetRepositoryServices()->GetValueByPath(path + configuration_paths::issuer) != '\0';
}

// Of the site or the system at `path`, which has no issuer, a name on the way to it that was probably meant otherwise.
// False: there is none.
bool MisspeltIssuer(std::string path, Report& shared)
{
    std::string_view rest = configuration_paths::issuer;
    while (!rest.empty()) {
        rest.remove_prefix(1);
        const std::string name(rest.substr(0, rest.find('\\')));
        const std::vector<CFG_Entry> entries = CFG_ListEntries(path);
        const auto isName = [&](const CFG_Entry& entry) { return entry.name == name; };
        if (std::none_of(entries.begin(), entries.end(), isName)) {
            const auto near = std::find_if(entries.begin(), entries.end(), [&](const CFG_Entry& entry) {
                return !Nearest(entry.name, {name}).empty();
            });
            if (near != entries.end()) {
                shared.Warn("AC031", near->place, "the key " + Quoted(near->name) + " is read by nobody",
                            "users' filters hold the issuer of all sites in place of this one, or the empty text",
                            "did you mean " + Quoted(name) + "?");
            }
            return near != entries.end();
        }
        path += "\\" + name;
        rest.remove_prefix(name.size());
    }
    return false; // its value is empty
}

void Issuers(const CheckedScope& scope, Report& report)
{
    if (!Maps(scope, "SiteIdToIssuer")) {
        return;
    }
    const char* remedy = "write its value under applications.norvale.pix.assigning_authority, or one for all sites "
                         "under [zarvona.system.applications.norvale.pix.assigning_authority]";
    const std::string sites = configuration_paths::sites;
    const bool hasDefault = HasIssuer(configuration_paths::system);
    Report shared = report.Shared();
    if (!hasDefault) {
        MisspeltIssuer(configuration_paths::system, shared);
        if (TableNames(sites).empty()) {
            report.Warn("AC026", scope.PlaceOf("values_function"), "there is no site, and no issuer for all sites",
                        everyValueIsEmpty, remedy);
        }
    }
    for (const CFG_Entry& site : CFG_ListEntries(sites)) {
        const std::string path = sites + "\\" + site.name;
        if (!site.isNode || HasIssuer(path)) {
            continue;
        }
        if (!MisspeltIssuer(path, shared) && !hasDefault) {
            shared.Warn("AC026", site.place,
                        "the site " + Quoted(site.name) + " has no issuer, and there is none for all sites",
                        thisValueIsEmpty, remedy);
        }
    }
}

std::vector<std::string> TokensOf(const CheckedScope& scope, const char* base)
{
    return scope.repository.manager->TokensOf(scope.Text(base));
}

void UnframedTokens(const CheckedScope& scope, Report& report)
{
    const auto check = [&](const char* base, const char* effect) {
        for (const std::string& token : TokensOf(scope, base)) {
            if (!IsFramed(token)) {
                const bool hasBlank = token.starts_with(' ') || token.ends_with(' ');
                report.Warn("AC027", scope.PlaceOf(base), "the token " + Quoted(token) + " is not framed by $", effect,
                            hasBlank ? "remove the blank beside the comma: it is part of the token"
                                     : "write it as in \"$region$\", in the template too");
            }
        }
    };
    check("mandatory_fields", "it is passed over: users who lack the attribute get the condition all the same");
    check("replace_fields", "it is passed over: where the template holds it, it stays in users' filters");
}

void MandatoryButNotReplaced(const CheckedScope& scope, Report& report)
{
    for (const std::string& token : TokensOf(scope, "mandatory_fields")) {
        if (IsFramed(token) && !IsOneOf(scope.condition.tokens, token)) {
            report.Warn("AC028", scope.PlaceOf("mandatory_fields"),
                        "the mandatory token " + Quoted(token) + " is not in " + scope.condition.Key("replace_fields"),
                        "nobody asks for its attribute: users who lack it get the condition all the same",
                        "add it to " + scope.condition.Key("replace_fields") + ", or remove it here");
        }
    }
}

void ReplacedButNotWritten(const CheckedScope& scope, Report& report)
{
    if (scope.condition.fillsTokens && scope.condition.Has(valuesPlaceholder)) {
        return; // the tokens are too many there, and not the template too short
    }
    for (const std::string& token : scope.condition.tokens) {
        if (!scope.condition.Has(token)) {
            report.Warn("AC029", scope.PlaceOf("replace_fields"),
                        "the token " + Quoted(token) + " does not stand in the template",
                        "users granted %my% are not restricted to their own " + Quoted(AttributeName(token)),
                        "write it in " + scope.condition.Key("condition") + ", or remove it here");
        }
    }
}

} // namespace

void CheckLookups(const CheckedScope& scope, Report& report)
{
    for (const auto rule : {UnknownFunction, EmptyCodeTable, CodesWithoutName, Issuers, UnframedTokens,
                            MandatoryButNotReplaced, ReplacedButNotWritten}) {
        rule(scope, report);
    }
}

} // namespace secm::analysis
