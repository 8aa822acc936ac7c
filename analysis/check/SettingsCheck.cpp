// The settings of a repository: filters for everybody, operators and delimiters.
#include "analysis/check/CheckRules.h"

#include "SECM_AccessControl/TemplateLanguage.h"

#include <fmt/core.h>

#include <algorithm>
#include <string>
#include <string_view>

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

void NothingIsHidden(const CheckedRepository& repository, FindingSink& sink)
{
    const std::string& filter = repository.Rules().settings.hideAllFilter;
    if (IsBlank(filter)) {
        sink.Error("AC001", repository.table.PlaceOf("hide_all_filter"), Lack(repository, "hide_all_filter", filter),
                   fmt::format("users for whom a restriction cannot be written, such as those whom nobody granted a "
                               "value, get {} and see every record; so does everybody while there is no security "
                               "manager",
                               BlankFilter(filter)),
                   "write a filter that no record matches, such as hide_all_filter = \"1 = 0\"");
    }
}

void HiddenLikeUnknown(const CheckedRepository& repository, FindingSink& sink)
{
    const FilterSettings& settings = repository.Rules().settings;
    if (!IsBlank(settings.hideAllFilter) && settings.hideAllFilter == settings.defaultFilter) {
        sink.Error("AC002", repository.table.PlaceOf("hide_all_filter"),
                   fmt::format("hide_all_filter and default_filter are both '{}'", settings.hideAllFilter),
                   "users for whom a restriction cannot be written see what unknown users see, and nobody can tell "
                   "the two answers apart",
                   "let hide_all_filter match no record; where unknown users too must see nothing, write the two "
                   "differently, such as \"1 = 0\" and \"0 = 1\"");
    }
}

void NoFields(const CheckedRepository& repository, FindingSink& sink)
{
    if (repository.Rules().fields.empty()) {
        const bool hasSome = !repository.definitions.empty();
        const std::string& name = repository.Rules().repository;
        sink.Error(
            "AC003", repository.table.place,
            fmt::format("the repository '{}' has no field {}", name, hasSome ? "that is not left out" : "at all"),
            "every user who is known gets the empty filter and sees every record",
            hasSome ? "correct its fields (AC004)"
                    : fmt::format("add a table fields.FIELD.{} for each field that restricts users", name));
    }
}

// The first condition that holds `placeholder`, in words; empty when none does.
std::string FirstUse(const CheckedRepository& repository, std::string_view placeholder)
{
    for (const CheckedDefinition& definition : repository.definitions) {
        for (const CheckedCondition& condition : definition.conditions) {
            if (condition.Has(placeholder)) {
                return fmt::format("{} of the field '{}'", condition.Key("condition"), definition.rule->name);
            }
        }
    }
    return "";
}

bool LacksDelimiter(const CheckedRepository& repository)
{
    return repository.Rules().settings.valueMultiplicityDelimiter.empty() &&
           !FirstUse(repository, valuesPlaceholder).empty();
}

// Whether something stands around a list of values.
bool IsListFramed(const FilterSettings& settings)
{
    return !settings.valueMultiplicityPrefix.empty() || !settings.valueMultiplicitySuffix.empty();
}

void ValuesRunTogether(const CheckedRepository& repository, FindingSink& sink)
{
    if (LacksDelimiter(repository) && !IsListFramed(repository.Rules().settings)) {
        sink.Error("AC009", repository.table.PlaceOf("value_multiplicity_delimiter"),
                   repository.table.Lack("value_multiplicity_delimiter") +
                       ", and so are value_multiplicity_prefix and value_multiplicity_suffix",
                   "users with two values or more get them run together (A and B as AB): they see other records than "
                   "they were granted, or none",
                   "write what stands between two values, such as value_multiplicity_delimiter = \"', '\"");
    }
}

void OperatorIsEmpty(const CheckedRepository& repository, const char* key, const char* users, const char* example,
                     FindingSink& sink)
{
    const std::string use = FirstUse(repository, equalOperatorPlaceholder);
    if (!use.empty()) {
        sink.Error(
            "AC010", repository.table.PlaceOf(key),
            fmt::format("{}, and {} asks for it by %equal_operator%", repository.table.Lack(key), use),
            fmt::format("users with {} get a condition without an operator, which the host most likely cannot run",
                        users),
            fmt::format("write the operator, such as {} = \"{}\"", key, example));
    }
}

void OperatorsAreEmpty(const CheckedRepository& repository, FindingSink& sink)
{
    if (repository.Rules().settings.singleEqualOperator.empty()) {
        OperatorIsEmpty(repository, "single_equal_operator", "one value", "=", sink);
    }
    if (repository.Rules().settings.multipleEqualOperator.empty()) {
        OperatorIsEmpty(repository, "multiple_equal_operator", "several values", "IN", sink);
    }
}

void ClausesRunTogether(const CheckedRepository& repository, FindingSink& sink)
{
    if (repository.Rules().settings.filterDelimiter.empty() && repository.Rules().fields.size() > 1) {
        sink.Error("AC020", repository.table.PlaceOf("filter_delimiter"), repository.table.Lack("filter_delimiter"),
                   "users whom two fields restrict get the two clauses side by side, which query languages refuse or "
                   "take for OR",
                   "write what stands between two clauses, such as filter_delimiter = \" AND \"");
    }
}

void StrangersSeeEverything(const CheckedRepository& repository, FindingSink& sink)
{
    const std::string& filter = repository.Rules().settings.defaultFilter;
    if (IsBlank(filter)) {
        sink.Error(
            "AC033", repository.table.PlaceOf("default_filter"), Lack(repository, "default_filter", filter),
            fmt::format("users whom the security database does not know get {} and see every record",
                        BlankFilter(filter)),
            "write what such users may see, such as default_filter = \"0 = 1\" for nothing (or \"1 = 1\" if they "
            "are to see everything, which is a warning)");
    }
}

void ValuesOnlyFramed(const CheckedRepository& repository, FindingSink& sink)
{
    if (LacksDelimiter(repository) && IsListFramed(repository.Rules().settings)) {
        sink.Warn("AC035", repository.table.PlaceOf("value_multiplicity_delimiter"),
                  repository.table.Lack("value_multiplicity_delimiter") +
                      "; value_multiplicity_prefix and value_multiplicity_suffix stand around the whole list only",
                  "users with two values or more get them side by side (A and B as AB), which few query languages "
                  "take for two",
                  "write what stands between two values, such as value_multiplicity_delimiter = \"', '\"");
    }
}

} // namespace

void CheckSettings(const CheckedRepository& repository, FindingSink& sink)
{
    for (const auto rule : {NothingIsHidden, HiddenLikeUnknown, NoFields, ValuesRunTogether, OperatorsAreEmpty,
                            ClausesRunTogether, StrangersSeeEverything, ValuesOnlyFramed}) {
        rule(repository, sink);
    }
}

} // namespace secm::analysis
