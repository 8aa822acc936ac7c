// The settings of a repository.
#include "analysis/check/ConfigurationCheck.h"

#include <algorithm>

namespace secm::analysis {

namespace {

// Whether the filter holds nothing but blanks (Unicode's too) and comments, so that an engine takes it for no filter.
bool IsBlank(std::string_view filter)
{
    while (!filter.empty()) {
        std::size_t length = 0;
        for (const std::string_view blank : {" ", "\t", "\n", "\v", "\f", "\r", "\u00A0", "\u3000", "\uFEFF"}) {
            length = std::max(length, filter.starts_with(blank) ? blank.size() : 0);
        }
        if (filter.starts_with("--")) {
            length = filter.find('\n');
        } else if (filter.starts_with("/*")) {
            const std::size_t end = filter.find("*/", 2);
            length = end != std::string_view::npos ? end + 2 : end;
        }
        if (length == 0) {
            return false;
        }
        filter.remove_prefix(std::min(length, filter.size()));
    }
    return true;
}

// What is wrong with the blank setting `key`.
std::string Lack(const CheckedRepository& repository, const std::string& key, const std::string& filter)
{
    return filter.empty() ? repository.table.Lack(key) : key + " holds nothing but blanks or a comment";
}

// What users get when the filter is blank.
std::string BlankFilter(const std::string& filter)
{
    return filter.empty() ? "the empty filter" : "a filter that restricts nothing";
}

void NothingIsHidden(const CheckedRepository& repository, Report& report)
{
    const std::string& filter = repository.manager->Rules().settings.hideAllFilter;
    if (IsBlank(filter)) {
        report.Error("AC001", repository.table.PlaceOf("hide_all_filter"), Lack(repository, "hide_all_filter", filter),
                     "users for whom a restriction cannot be written, such as those whom nobody granted a value, get " +
                         BlankFilter(filter) +
                         " and see every record; so does everybody while there is no security manager",
                     "write a filter that no record matches, such as hide_all_filter = \"1 = 0\"");
    }
}

void HiddenLikeUnknown(const CheckedRepository& repository, Report& report)
{
    const RulesManager& manager = *repository.manager;
    if (!IsBlank(manager.Rules().settings.hideAllFilter) &&
        manager.Rules().settings.hideAllFilter == manager.Rules().settings.defaultFilter) {
        report.Error("AC002", repository.table.PlaceOf("hide_all_filter"),
                     "hide_all_filter and default_filter are both '" + manager.Rules().settings.hideAllFilter + "'",
                     "users for whom a restriction cannot be written see what unknown users see, and nobody can tell "
                     "the two answers apart",
                     "let hide_all_filter match no record; where unknown users too must see nothing, write the two "
                     "differently, such as \"1 = 0\" and \"0 = 1\"");
    }
}

void NoFields(const CheckedRepository& repository, Report& report)
{
    if (repository.manager->Rules().fields.empty()) {
        const bool hasSome = !repository.definitions.empty();
        report.Error("AC003", repository.table.place,
                     "the repository '" + repository.name + "' has no field " +
                         (hasSome ? "that is not left out" : "at all"),
                     "every user who is known gets the empty filter and sees every record",
                     hasSome ? "mend its fields (AC004)"
                             : "add a table fields.FIELD." + repository.name + " for each field that restricts users");
    }
}

// Where a kept template holds `placeholder`, in words; empty: none does.
std::string FirstUse(const CheckedRepository& repository, std::string_view placeholder)
{
    for (const CheckedDefinition& definition : repository.definitions) {
        for (const CheckedCondition& condition : definition.conditions) {
            if (condition.Has(placeholder)) {
                return condition.Key("condition") + " of the field '" + definition.rule->name + "'";
            }
        }
    }
    return "";
}

bool LacksDelimiter(const CheckedRepository& repository)
{
    return repository.manager->Rules().settings.valueMultiplicityDelimiter.empty() &&
           !FirstUse(repository, valuesPlaceholder).empty();
}

// Whether something stands around a list of values.
bool IsListFramed(const RulesManager& manager)
{
    return !manager.Rules().settings.valueMultiplicityPrefix.empty() ||
           !manager.Rules().settings.valueMultiplicitySuffix.empty();
}

void ValuesRunTogether(const CheckedRepository& repository, Report& report)
{
    if (LacksDelimiter(repository) && !IsListFramed(*repository.manager)) {
        report.Error("AC009", repository.table.PlaceOf("value_multiplicity_delimiter"),
                     repository.table.Lack("value_multiplicity_delimiter") +
                         ", and so are value_multiplicity_prefix and value_multiplicity_suffix",
                     "users with two values or more get them run together (A and B as AB): they see other records than "
                     "they were granted, or none",
                     "write what stands between two values, such as value_multiplicity_delimiter = \"', '\"");
    }
}

void OperatorIsEmpty(const CheckedRepository& repository, const std::string& key, const std::string& users,
                     const std::string& example, Report& report)
{
    const std::string use = FirstUse(repository, equalOperatorPlaceholder);
    if (!use.empty()) {
        report.Error("AC010", repository.table.PlaceOf(key),
                     repository.table.Lack(key) + ", and " + use + " asks for it by %equal_operator%",
                     "users with " + users +
                         " get a condition without an operator, which the host most likely cannot run",
                     "write the operator, such as " + key + " = \"" + example + "\"");
    }
}

void OperatorsAreEmpty(const CheckedRepository& repository, Report& report)
{
    if (repository.manager->Rules().settings.singleEqualOperator.empty()) {
        OperatorIsEmpty(repository, "single_equal_operator", "one value", "=", report);
    }
    if (repository.manager->Rules().settings.multipleEqualOperator.empty()) {
        OperatorIsEmpty(repository, "multiple_equal_operator", "several values", "IN", report);
    }
}

void ClausesRunTogether(const CheckedRepository& repository, Report& report)
{
    if (repository.manager->Rules().settings.filterDelimiter.empty() && repository.manager->Rules().fields.size() > 1) {
        report.Warn("AC020", repository.table.PlaceOf("filter_delimiter"), repository.table.Lack("filter_delimiter"),
                    "users whom two fields restrict get the two clauses side by side, which few query languages take "
                    "for AND",
                    "write what stands between two clauses, such as filter_delimiter = \" AND \"");
    }
}

void StrangersSeeEverything(const CheckedRepository& repository, Report& report)
{
    const std::string& filter = repository.manager->Rules().settings.defaultFilter;
    if (IsBlank(filter)) {
        report.Warn("AC033", repository.table.PlaceOf("default_filter"), Lack(repository, "default_filter", filter),
                    "users whom the security database does not know get " + BlankFilter(filter) +
                        " and see every record",
                    "write what such users may see, such as default_filter = \"0 = 1\" for nothing");
    }
}

void ValuesOnlyFramed(const CheckedRepository& repository, Report& report)
{
    if (LacksDelimiter(repository) && IsListFramed(*repository.manager)) {
        report.Warn("AC035", repository.table.PlaceOf("value_multiplicity_delimiter"),
                    repository.table.Lack("value_multiplicity_delimiter") +
                        "; value_multiplicity_prefix and value_multiplicity_suffix stand around the whole list only",
                    "users with two values or more get them side by side (A and B as AB), which few query languages "
                    "take for two",
                    "write what stands between two values, such as value_multiplicity_delimiter = \"', '\"");
    }
}

} // namespace

void CheckSettings(const CheckedRepository& repository, Report& report)
{
    for (const auto rule : {NothingIsHidden, HiddenLikeUnknown, NoFields, ValuesRunTogether, OperatorsAreEmpty,
                            ClausesRunTogether, StrangersSeeEverything, ValuesOnlyFramed}) {
        rule(repository, report);
    }
}

} // namespace secm::analysis
