// The syntax of a condition's template as far as most query languages share it: quotes, brackets, comments and OR.
#include "analysis/check/CheckRules.h"

#include "analysis/check/FilledTemplate.h"
#include "analysis/check/QueryText.h"
#include "analysis/check/UnpairedMark.h"

#include <fmt/core.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace secm::analysis {

namespace {

constexpr std::string_view listQuotes = "'\"";

bool HasQuote(std::string_view text)
{
    return text.find_first_of(listQuotes) != std::string_view::npos;
}

// `character` when it is a quote, else NUL.
char AsQuote(char character)
{
    return listQuotes.find(character) != std::string_view::npos ? character : '\0';
}

char LastQuote(std::string_view text)
{
    return text.empty() ? '\0' : AsQuote(text.back());
}

char FirstQuote(std::string_view text)
{
    return text.empty() ? '\0' : AsQuote(text.front());
}

// The template's text before and behind %values%.
struct ValuesFrame {
    explicit ValuesFrame(const std::string& text)
        : at(text.find(valuesPlaceholder)), before(text.substr(0, at)),
          behind(at != std::string::npos ? text.substr(at + valuesPlaceholder.size()) : "")
    {
    }

    bool HasValues() const { return at != std::string::npos; }

    std::size_t at;
    std::string before;
    std::string behind;
};

// The quotes around each value of a list must be those around a single value.
bool QuotesDiffer(const ValuesFrame& frame, const FilterSettings& settings)
{
    const std::string& delimiter = settings.valueMultiplicityDelimiter;
    const std::string& prefix = settings.valueMultiplicityPrefix;
    const std::string& suffix = settings.valueMultiplicitySuffix;
    if (!HasQuote(delimiter + prefix + suffix)) {
        return false;
    }
    const char left = LastQuote(frame.before);
    const char right = FirstQuote(frame.behind);
    return LastQuote(frame.before + prefix) != left || LastQuote(delimiter) != left || FirstQuote(delimiter) != right ||
           FirstQuote(suffix + frame.behind) != right;
}

// Whether the list is one quoted text, as in IN ('a, b') or ("a OR b"). Functions that split a text are not meant.
bool IsListInOneQuote(const ValuesFrame& frame, const FilledTemplate& filled, const FilterSettings& settings)
{
    const std::string& delimiter = settings.valueMultiplicityDelimiter;
    const char left = LastQuote(frame.before);
    if (left == '\0' || left != FirstQuote(frame.behind) ||
        HasQuote(delimiter + settings.valueMultiplicityPrefix + settings.valueMultiplicitySuffix)) {
        return false;
    }
    const std::string before(WithoutOuterBlanks(filled.several.substr(0, filled.several.find("value1"))));
    const std::string list = LowerCase(before);
    const bool isSqlList = delimiter.find(',') != std::string::npos &&
                           (list.ends_with("in ('") || list.ends_with("in('") || list.ends_with("in (\""));
    return isSqlList || (HasWord(delimiter, "or") && list.ends_with(":(\""));
}

void QuotesAndBrackets(const CheckedScope& scope, FindingSink& sink)
{
    const std::string& text = scope.condition.rule->text;
    if (const auto unpaired = FindUnpaired(text)) {
        ReportUnpaired(*unpaired, text, scope.condition.Key("condition"), scope.PlaceOf("condition"), sink);
    }
}

// A quote that a word processor puts in the place of ' or ", outside of quotes; empty when there is none.
std::string_view TypographicQuote(std::string_view text)
{
    const std::string outside = OutsideQuotes(text);
    for (const std::string_view quote : {"\u2018", "\u2019", "\u201A", "\u201C", "\u201D", "\u201E", "\u00B4"}) {
        if (outside.find(quote) != std::string::npos) {
            return quote;
        }
    }
    return "";
}

void ReportTypographicQuote(const CheckedTable& table, const std::string& key, FindingSink& sink)
{
    if (const std::string_view quote = TypographicQuote(table.Text(key)); !quote.empty()) {
        sink.Error("AC064", table.PlaceOf(key), fmt::format("{} has the typographic quote {}", key, quote),
                   "query languages do not read it as a quote: users' filters break, or values are read as a part of "
                   "the condition",
                   "write ' or \" instead; word processors replace them");
    }
}

void TypographicQuotes(const CheckedScope& scope, FindingSink& sink)
{
    ReportTypographicQuote(scope.definition.table, scope.condition.Key("condition"), sink);
}

void EndsEarly(const CheckedScope& scope, FindingSink& sink)
{
    const std::string outside = OutsideQuotes(scope.condition.rule->text);
    const std::size_t comment = outside.find("--");
    const bool isComment = comment != std::string::npos && outside.find('\n', comment) == std::string::npos &&
                           (comment == 0 || outside[comment - 1] == ' ') &&
                           (comment + 2 == outside.size() || outside[comment + 2] == ' ');
    if (isComment || WithoutOuterBlanks(outside).ends_with(';')) {
        sink.Error("AC062", scope.PlaceOf("condition"),
                   fmt::format("{} ends with a {}", scope.condition.Key("condition"),
                               isComment ? "comment (--)" : "semicolon"),
                   "the query language ignores or refuses what follows: the restrictions by other fields, and the "
                   "host's own",
                   isComment ? "remove the comment; write it behind # outside of the quotes of the value"
                             : "remove the semicolon");
    }
}

// Whether the module joins the filled condition with other texts by AND, without parentheses around it.
bool IsJoinedBare(const CheckedScope& scope)
{
    const auto isAnd = [](const std::string& delimiter) {
        return delimiter.find_first_of("()") == std::string::npos &&
               (HasWord(delimiter, "and") || delimiter.find("&&") != std::string::npos);
    };
    const FieldRule& field = *scope.definition.rule;
    if (field.conditions.size() > 1 && isAnd(field.conditionsDelimiter)) {
        return true;
    }
    // A condition that needs a mandatory attribute may leave the other one alone, and then without parentheses.
    const auto stays = [&](const CheckedCondition& other) {
        return other.rule != scope.condition.rule && (!other.fillsTokens || other.rule->mandatoryTokens.empty());
    };
    const auto& conditions = scope.definition.conditions;
    return scope.repository.Rules().fields.size() > 1 && isAnd(scope.repository.Rules().settings.filterDelimiter) &&
           std::none_of(conditions.begin(), conditions.end(), stays);
}

void BareOr(const CheckedScope& scope, FindingSink& sink)
{
    if (!IsJoinedBare(scope)) {
        return;
    }
    const std::string& delimiter = scope.repository.Rules().settings.filterDelimiter;
    const bool barsAreOr = delimiter.find("&&") != std::string::npos; // elsewhere || may concatenate texts
    const auto hasOr = [&](const std::string& text) {
        const std::string outside = OutsideBrackets(text);
        return HasWord(outside, "or") || (barsAreOr && outside.find("||") != std::string::npos);
    };
    const FilledTemplate filled(scope);
    const bool isInTemplate = hasOr(filled.one);
    if (isInTemplate || hasOr(filled.several)) {
        sink.Error("AC018", scope.PlaceOf("condition"),
                   isInTemplate ? fmt::format("{} has an OR outside of parentheses", scope.condition.Key("condition"))
                                : fmt::format("{} with two values has an OR outside of parentheses: {}",
                                              scope.condition.Key("condition"), filled.several),
                   "other restrictions are joined to it by AND, which binds more closely: users see every record that "
                   "one side of the OR matches, whatever the other restrictions say",
                   fmt::format("write parentheses around the template: ({})", scope.condition.rule->text));
    }
}

void MatchesEverything(const CheckedScope& scope, FindingSink& sink)
{
    const FieldRule& field = *scope.definition.rule;
    const bool isAlternative = field.conditions.size() == 1 || HasWord(field.conditionsDelimiter, "or") ||
                               field.conditionsDelimiter.find("||") != std::string::npos;
    const std::string& text = scope.condition.rule->text;
    const bool canMatchAll = !scope.condition.Has(valuesPlaceholder) || HasWord(text, "or");
    if (isAlternative && canMatchAll && MatchesEveryRecord(text)) {
        sink.Error("AC063", scope.PlaceOf("condition"),
                   fmt::format("every record matches {}: {}", scope.condition.Key("condition"), text),
                   fmt::format("the field '{}' restricts none of its users", field.name),
                   "remove what always holds, or the table of the field if it is not to restrict anybody");
    }
}

// How a list of values is quoted in a template.
enum class ListQuotes { right, other, one };

ListQuotes ListQuotesOf(const CheckedScope& scope)
{
    const FilterSettings& settings = scope.repository.Rules().settings;
    const std::string& text = scope.condition.rule->text;
    const ValuesFrame frame(text);
    if (!frame.HasValues() || settings.valueMultiplicityDelimiter.empty() || FindUnpaired(text) ||
        !TypographicQuote(text + settings.valueMultiplicityDelimiter).empty()) {
        return ListQuotes::right; // or another finding
    }
    const FilledTemplate filled(scope);
    return FindUnpaired(filled.several) || QuotesDiffer(frame, settings) ? ListQuotes::other
           : IsListInOneQuote(frame, filled, settings)                   ? ListQuotes::one
                                                                         : ListQuotes::right;
}

void ReportListQuotes(const CheckedScope& scope, ListQuotes quotes, const CFG_Place& place, FindingSink& sink)
{
    const FilledTemplate filled(scope);
    const std::string name =
        fmt::format("{} of the field '{}'", scope.condition.Key("condition"), scope.definition.rule->name);
    if (quotes == ListQuotes::other) {
        const CFG_Place& delimiter = scope.repository.table.PlaceOf("value_multiplicity_delimiter");
        sink.Error("AC016", place,
                   fmt::format("{} and value_multiplicity_delimiter quote values differently: one value gives {}, two "
                               "give {}",
                               name, filled.one, filled.several),
                   "the filters of users with one value or of those with several break, or a value is read as a part "
                   "of the condition",
                   fmt::format("write the same quotes around %values% and in value_multiplicity_delimiter ({}:{}), "
                               "such as ('%values%') with \"', '\"; prefix and suffix stand around lists only",
                               delimiter.file, delimiter.line));
    } else {
        const char quote = scope.condition.rule->text[scope.condition.rule->text.find(valuesPlaceholder) - 1];
        sink.Error("AC016", place,
                   fmt::format("{} quotes a list as one text: two values give {}", name, filled.several),
                   "users with several values see other records than they were granted, or none",
                   fmt::format("write the quotes into the delimiter too, such as value_multiplicity_delimiter = "
                               "{1}{0}{2}{0}{1}",
                               quote, quote == '\'' ? '"' : '\'',
                               scope.repository.Rules().settings.valueMultiplicityDelimiter));
    }
}

} // namespace

void CheckLists(const CheckedRepository& repository, FindingSink& sink)
{
    ReportTypographicQuote(repository.table, "value_multiplicity_delimiter", sink);
    std::vector<std::pair<CheckedScope, ListQuotes>> wrong;
    std::size_t lists = 0;
    for (const CheckedDefinition& definition : repository.definitions) {
        for (const CheckedCondition& condition : definition.conditions) {
            const CheckedScope scope{repository, definition, condition};
            lists += condition.Has(valuesPlaceholder) ? 1U : 0U;
            if (const ListQuotes quotes = ListQuotesOf(scope); quotes != ListQuotes::right) {
                wrong.emplace_back(scope, quotes);
            }
        }
    }
    if (wrong.size() == lists && lists > 1) { // most likely the delimiter is wrong, and not every template
        const auto& [scope, quotes] = wrong.front();
        ReportListQuotes(scope, quotes, repository.table.PlaceOf("value_multiplicity_delimiter"), sink);
        return;
    }
    for (const auto& [scope, quotes] : wrong) {
        ReportListQuotes(scope, quotes, scope.PlaceOf("condition"), sink);
    }
}

void CheckTemplateSyntax(const CheckedScope& scope, FindingSink& sink)
{
    for (const auto rule : {QuotesAndBrackets, TypographicQuotes, EndsEarly, BareOr, MatchesEverything}) {
        rule(scope, sink);
    }
}

} // namespace secm::analysis
