// What %equal_operator% becomes for one value and for several, beside what follows it in the template.
#include "analysis/check/CheckRules.h"

#include "analysis/check/FilledTemplate.h"
#include "analysis/check/QueryText.h"
#include "analysis/check/WordCharacter.h"
#include "analysis/definitions/KnownKeys.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace secm::analysis {

namespace {

bool IsNegated(const std::string& sign)
{
    return sign.starts_with("not") || sign == "<>" || sign == "!=";
}

// One of the two operators in a template.
struct Operator {
    Operator(const CheckedScope& scope, bool forOne)
        : key(forOne ? "single_equal_operator" : "multiple_equal_operator"),
          text(forOne ? scope.repository.Rules().settings.singleEqualOperator
                      : scope.repository.Rules().settings.multipleEqualOperator),
          sign(LowerCase(WithoutOuterBlanks(text)))
    {
        const std::string& condition = scope.condition.rule->text;
        const std::size_t at = condition.find(equalOperatorPlaceholder);
        const FilledTemplate filled(scope);
        // Nothing before the operator is filled, unless %values% comes first.
        const bool isBeforeValues = at < condition.find(valuesPlaceholder);
        before = condition.substr(0, at);
        behind = isBeforeValues ? (forOne ? filled.one : filled.several).substr(at + text.size()) : "";
    }

    std::string key;
    std::string text;
    std::string sign; // without blanks, in lower case
    std::string before;
    std::string behind; // filled
};

// Whether two texts that come together make one word.
bool AreGlued(std::string_view left, std::string_view right)
{
    return !left.empty() && !right.empty() && IsWordCharacter(left.back()) && IsWordCharacter(right.front());
}

// Why the query language refuses the operator here; empty when nothing is wrong.
std::string Misfit(const Operator& used, bool forOne, const FilterSettings& settings)
{
    constexpr std::array<std::string_view, 6> comparisons = {"=", "==", "<>", "!=", "like", "not like"};
    const std::string_view rest = WithoutOuterBlanks(used.behind);
    if (AreGlued(used.before, used.text)) {
        return "because no blank is before it";
    }
    if (AreGlued(used.text, used.behind)) {
        return "because no blank is behind it";
    }
    if ((used.sign == "in" || used.sign == "not in") && !rest.empty() && rest.front() != '(') {
        return "because the values behind it are not in parentheses";
    }
    const bool isList = rest.starts_with('(') && settings.valueMultiplicityDelimiter.find(',') != std::string::npos;
    if (!forOne && isList && IsOneOf(comparisons, used.sign)) {
        return "because it compares with one value, and a list is behind it";
    }
    return "";
}

void OneIsNegated(const CheckedRepository& repository, FindingSink& sink)
{
    const FilterSettings& settings = repository.Rules().settings;
    const std::string one = LowerCase(WithoutOuterBlanks(settings.singleEqualOperator));
    const std::string several = LowerCase(WithoutOuterBlanks(settings.multipleEqualOperator));
    if (!one.empty() && !several.empty() && IsNegated(one) != IsNegated(several)) {
        sink.Error("AC060", repository.table.PlaceOf("multiple_equal_operator"),
                   fmt::format("of single_equal_operator '{}' and multiple_equal_operator '{}', one is negated",
                               settings.singleEqualOperator, settings.multipleEqualOperator),
                   "users with one value, or users with several, see all records but those that they were granted",
                   "write two operators with the same meaning, such as = and IN");
    }
}

// The first condition that an operator does not fit.
void DoesNotFit(const CheckedRepository& repository, bool forOne, FindingSink& sink)
{
    for (const CheckedDefinition& definition : repository.definitions) {
        for (const CheckedCondition& condition : definition.conditions) {
            const CheckedScope scope{repository, definition, condition};
            if (!condition.Has(equalOperatorPlaceholder) || !condition.Has(valuesPlaceholder)) {
                continue;
            }
            const Operator used(scope, forOne);
            const std::string misfit = Misfit(used, forOne, repository.Rules().settings);
            if (!misfit.empty()) {
                const FilledTemplate filled(scope);
                sink.Error("AC060", repository.table.PlaceOf(used.key),
                           fmt::format("{} '{}' does not fit {} of the field '{}', {}: {}", used.key, used.text,
                                       condition.Key("condition"), definition.rule->name, misfit,
                                       forOne ? filled.one : filled.several),
                           fmt::format("the filters of users with {} break, or match other records",
                                       forOne ? "one value" : "several values"),
                           "write operators that fit the template, such as single_equal_operator = \"=\" and "
                           "multiple_equal_operator = \"IN\" for column %equal_operator% ('%values%')");
                return;
            }
        }
    }
}

// Whether the template compares with one value by an operator of its own, and its list of several has commas.
bool ComparesWithAList(const CheckedScope& scope)
{
    const std::string& text = scope.condition.rule->text;
    const std::string& delimiter = scope.repository.Rules().settings.valueMultiplicityDelimiter;
    std::string_view before = std::string_view(text).substr(0, text.find(valuesPlaceholder));
    const bool isQuoted = before.ends_with('\'') || before.ends_with('"');
    const bool hasQuotes = delimiter.find_first_of("'\"") != std::string::npos;
    if (!scope.condition.Has(valuesPlaceholder) || delimiter.find(',') == std::string::npos || isQuoted != hasQuotes) {
        return false;
    }
    before = WithoutOuterBlanks(before.substr(0, before.size() - (isQuoted ? 1 : 0)));
    before = WithoutOuterBlanks(before.substr(0, before.size() - (before.ends_with('(') ? 1 : 0)));
    constexpr std::size_t longest = 5; // of the operators
    const std::string end = LowerCase(before.substr(before.size() - std::min(before.size(), longest)));
    return end.ends_with(" like") || end.ends_with("<>") ||
           (end.ends_with('=') && !end.ends_with("=in=") && !end.ends_with("=out="));
}

void InWithoutParentheses(const CheckedScope& scope, FindingSink& sink)
{
    const std::string& text = scope.condition.rule->text;
    std::string_view before = std::string_view(text).substr(0, text.find(valuesPlaceholder));
    before.remove_suffix(before.ends_with('\'') ? 1 : 0);
    if (scope.condition.Has(valuesPlaceholder) && LowerCase(WithoutOuterBlanks(before)).ends_with(" in") &&
        scope.repository.Rules().settings.valueMultiplicityDelimiter.find(',') != std::string::npos) {
        sink.Error("AC060", scope.PlaceOf("condition"),
                   fmt::format("{} has IN before values without parentheses: {}", scope.condition.Key("condition"),
                               FilledTemplate(scope).several),
                   "the filters of all users whom it restricts break",
                   "write parentheses around the values, such as column IN ('%values%')");
    }
}

void OneValueOnly(const CheckedScope& scope, FindingSink& sink)
{
    // With my_field, each user has one value as a rule: an own attribute.
    if (scope.definition.rule->myField.empty() && ComparesWithAList(scope)) {
        sink.Warn("AC060", scope.PlaceOf("condition"),
                  fmt::format("{} compares with one value, and two values give a list: {}",
                              scope.condition.Key("condition"), FilledTemplate(scope).several),
                  "the filters of users with several values break, or match other records",
                  "write %equal_operator% in place of the operator, and parentheses around the values, such as "
                  "column %equal_operator% ('%values%')");
    }
}

} // namespace

void CheckOperators(const CheckedRepository& repository, FindingSink& sink)
{
    OneIsNegated(repository, sink);
    DoesNotFit(repository, true, sink);
    DoesNotFit(repository, false, sink);
    for (const CheckedDefinition& definition : repository.definitions) {
        for (const CheckedCondition& condition : definition.conditions) {
            InWithoutParentheses({repository, definition, condition}, sink);
            OneValueOnly({repository, definition, condition}, sink);
        }
    }
}

} // namespace secm::analysis
