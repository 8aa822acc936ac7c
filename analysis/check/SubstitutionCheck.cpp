#include "analysis/check/SubstitutionCheck.h"

#include "SECM_AccessControl/TemplateLanguage.h"
#include "analysis/check/OpenQuote.h"
#include "analysis/check/TextAppearance.h"
#include "analysis/check/WordCharacter.h"
#include "platform/configuration/ConfigurationPaths.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <string_view>
#include <utility>

namespace secm::analysis {

namespace {

bool EndsWithEscape(const std::string& text)
{
    const std::size_t last = text.find_last_not_of('\\');
    const std::size_t backslashes = text.size() - (last == std::string::npos ? 0 : last + 1);
    return backslashes % 2 == 1; // each pair is an escaped backslash
}

// `text` without SQL's comments, in which a quote opens nothing.
std::string WithoutComments(std::string_view text)
{
    std::string code;
    while (!text.empty()) {
        const bool isQuoted = !OpenQuote(code).empty();
        if (!isQuoted && text.starts_with("/*")) {
            const std::size_t end = text.find("*/", 2);
            text.remove_prefix(end == std::string_view::npos ? text.size() : end + 2);
        } else if (!isQuoted && text.starts_with("-- ")) {
            text.remove_prefix(std::min(text.find('\n'), text.size()));
        } else {
            code += text.front();
            text.remove_prefix(1);
        }
    }
    return code;
}

// Whether `before` ends with one of `words`, as a word of its own.
template <class Words>
bool EndsWithWord(std::string_view before, const Words& words)
{
    return std::any_of(words.begin(), words.end(), [&](std::string_view word) {
        if (before.size() < word.size()) {
            return false;
        }
        const std::string_view end = before.substr(before.size() - word.size());
        const std::string_view rest = before.substr(0, before.size() - word.size());
        return std::equal(end.begin(), end.end(), word.begin(),
                          [](unsigned char one, unsigned char other) { return std::toupper(one) == other; }) &&
               (rest.empty() || !IsWordCharacter(rest.back()));
    });
}

// What stands before a value, without the value's own quote and without blanks and parentheses.
std::string OperatorPart(std::string before, const FilterSettings& settings, bool isSingle)
{
    if (const std::string quote = OpenQuote(before); !quote.empty()) {
        before.erase(before.rfind(quote));
    }
    const auto trim = [&] { before.erase(before.find_last_not_of(" \t\n(") + 1); };
    trim();
    if (before.ends_with(equalOperatorPlaceholder)) {
        before.replace(before.size() - equalOperatorPlaceholder.size(), equalOperatorPlaceholder.size(),
                       isSingle ? settings.singleEqualOperator : settings.multipleEqualOperator);
        trim();
    }
    return before;
}

bool IsComparison(const std::string& before)
{
    constexpr std::array<std::string_view, 4> words = {"IN", "LIKE", "ILIKE", "BETWEEN"};
    return (!before.empty() && std::string_view("=<>").find(before.back()) != std::string_view::npos) ||
           EndsWithWord(before, words);
}

bool IsPatternOperator(const std::string& before)
{
    constexpr std::array<std::string_view, 6> words = {"LIKE", "ILIKE", "GLOB", "REGEXP", "RLIKE", "SIMILAR TO"};
    return before.ends_with('~') || before.ends_with("~*") || EndsWithWord(before, words);
}

bool IsNumber(std::string_view text, bool maybeNegative)
{
    if (maybeNegative && text.starts_with('-')) {
        text.remove_prefix(1);
    }
    const auto isDigits = [](std::string_view part) {
        return !part.empty() && part.find_first_not_of("0123456789") == std::string_view::npos;
    };
    const std::size_t point = std::min(text.find('.'), text.size());
    return isDigits(text.substr(0, point)) && (point == text.size() || isDigits(text.substr(point + 1)));
}

// The start of the remedy for a text that a values function does not know.
std::string Instead(const std::string& text, const std::vector<std::string>& names)
{
    if (!ListedValues(text).empty()) {
        return "a row grants one value: write a row for each; else ";
    }
    const std::string meant = ProbablyMeant(text, names);
    return meant.empty() ? "" : fmt::format("did you mean '{}'? else ", meant);
}

bool IsWildcard(const std::string& text)
{
    return text.find_first_not_of("%*_?.^$") == std::string::npos && text.find_first_of("%*") != std::string::npos;
}

// Whether an empty text between `before` and `behind` leaves only a pattern that every text matches, such as '%' or :*.
// The pattern ends at the quotes or, when no quote is open, at characters that belong to no word.
bool MatchesEverything(const std::string& before, const std::string& behind, const std::string& quote)
{
    constexpr std::string_view marks = "%*_?.^$";
    const std::size_t start = before.find_last_not_of(marks) + 1; // 0 when there is nothing else
    const std::size_t end = std::min(behind.find_first_not_of(marks), behind.size());
    const std::string pattern = before.substr(start) + behind.substr(0, end);
    const auto isBound = [&](char character) {
        return quote.empty() ? !IsWordCharacter(character) : character == quote.front();
    };
    return pattern.find_first_of("%*") != std::string::npos && (start == 0 || isBound(before[start - 1])) &&
           (end == behind.size() || isBound(behind[end]));
}

} // namespace

SubstitutionCheck::SubstitutionCheck(const CheckedScope& inScope, const std::string& token, std::string attribute,
                                     ConfiguredNames& names)
    : scope(inScope), isToken(!token.empty()), placeholder(isToken ? token : valuesPlaceholder),
      attributeName(std::move(attribute))
{
    const std::string& text = scope.condition.rule->text;
    const std::size_t at = text.find(placeholder);
    if (at == std::string::npos) {
        return; // nothing goes in
    }
    const std::string before = WithoutComments(text.substr(0, at));
    const std::string behind = text.substr(at + placeholder.size());
    isUsed = true;
    disturbing = scope.condition.tokens;
    disturbing.insert(disturbing.end(), {std::string(valuesPlaceholder), std::string(equalOperatorPlaceholder)});
    AddPlace(before, behind);
    const FilterSettings& settings = scope.repository.Rules().settings;
    for (const bool isSingle : {true, false}) {
        const std::string operatorPart = OperatorPart(before, settings, isSingle);
        isCompared = isCompared || IsComparison(operatorPart);
        isPattern = isPattern || IsPatternOperator(operatorPart);
    }
    if (!isToken) {
        const ConditionRule& rule = *scope.condition.rule;
        if (rule.function == "SiteIdToIssuer") {
            lookedUp = &names.Under(configuration_paths::sites);
        } else if (rule.function == "CodeToDisplayName") {
            lookedUp = &names.Under(configuration_paths::codeTables + rule.functionConfiguration);
        }
        const std::string first = before + settings.valueMultiplicityPrefix;
        const std::string& delimiter = settings.valueMultiplicityDelimiter;
        AddPlace(first, delimiter);
        AddPlace(first + delimiter, delimiter);
        AddPlace(first + delimiter, settings.valueMultiplicitySuffix + behind);
        disturbing.push_back(delimiter);
    }
    std::erase(disturbing, "");
}

void SubstitutionCheck::AddPlace(const std::string& before, const std::string& behind)
{
    const std::string quote = OpenQuote(before);
    quotes += quote;
    isUnquoted = isUnquoted || quote.empty();
    matchesEverything = matchesEverything || MatchesEverything(before, behind, quote);
}

void SubstitutionCheck::Check(const std::string& text, const std::string& where)
{
    const bool isNoValue = text.empty() || (text == ownValue && scope.condition.fillsTokens);
    if (!isUsed || (isNoValue && !isToken)) {
        return;
    }
    const std::string filled = isToken ? text : scope.repository.manager->Mapped(text, *scope.condition.rule);
    if (filled.empty()) {
        if (emptied.count == 0) {
            firstEmptied = text;
        }
        emptied.Add(isToken ? where : fmt::format("{}, which is '{}'", where, text));
        isOwnEmptied = isOwnEmptied || text == ownValue;
    } else if (lookedUp != nullptr) {
        CheckSite(text, where);
    }
    if (isPattern && IsWildcard(filled)) {
        wildcards.Add(fmt::format("{}, which is '{}'", where, text));
    }
    if (filled.find_first_of(quotes) != std::string::npos) {
        quoted.Add(where);
    }
    const auto isHeld = [&](const std::string& part) { return filled.find(part) != std::string::npos; };
    const auto found = std::find_if(disturbing.begin(), disturbing.end(), isHeld);
    if (found != disturbing.end()) {
        disturbed.Add(fmt::format("{}, which holds '{}'", where, *found));
    }
    if (!quotes.empty() && EndsWithEscape(filled)) {
        escaping.Add(where);
    }
    if (isUnquoted && !filled.empty() && !IsPlain(filled)) {
        noWord.Add(where);
    }
}

// Whether `filled` is one value in the query language even without quotes.
bool SubstitutionCheck::IsPlain(const std::string& filled) const
{
    if (isCompared) {
        return IsNumber(filled, true) || EndsWithWord(filled, std::array<std::string_view, 2>{"TRUE", "FALSE"});
    }
    constexpr std::array<std::string_view, 4> operators = {"AND", "OR", "NOT", "TO"};
    return IsNumber(filled, false) || (std::all_of(filled.begin(), filled.end(), IsWordCharacter) &&
                                       std::find(operators.begin(), operators.end(), filled) == operators.end());
}

// A site that is not configured has the issuer of all sites.
void SubstitutionCheck::CheckSite(const std::string& text, const std::string& where)
{
    if (scope.condition.rule->function != "SiteIdToIssuer" ||
        std::binary_search(lookedUp->begin(), lookedUp->end(), text)) {
        return;
    }
    if (unknownSites.count == 0) {
        firstUnknownSite = text;
    }
    unknownSites.Add(fmt::format("{}, which is '{}'", where, text));
}

std::string SubstitutionCheck::InWords(const FirstAndCount& texts) const
{
    return attributeName.empty() ? texts.InWords("grant")
                                 : texts.InWords("value", fmt::format(" of the attribute '{}'", attributeName));
}

void SubstitutionCheck::Report(FindingSink& sink) const
{
    QuotesInside(sink);
    PlaceholdersInside(sink);
    EscapesAtTheEnd(sink);
    NoWords(sink);
    EmptyTexts(sink);
    Wildcards(sink);
    UnknownSites(sink);
}

void SubstitutionCheck::QuotesInside(FindingSink& sink) const
{
    if (quoted.count != 0) {
        sink.Error("AC043", scope.PlaceOf("condition"),
                   fmt::format("the quote around {} is also in {}", placeholder, InWords(quoted)),
                   "it ends the quoted text early: the filters of users who have them break, or show whatever the rest "
                   "of the text says",
                   "take the quote out of them, or map them by a values function");
    }
}

void SubstitutionCheck::PlaceholdersInside(FindingSink& sink) const
{
    if (disturbed.count != 0) {
        sink.Error("AC044", scope.PlaceOf("condition"),
                   fmt::format("a placeholder, a token or the delimiter of values is in {}", InWords(disturbed)),
                   "in the filters of users who have them, it is filled in a second time, left as it is written, or "
                   "taken for several values",
                   "take it out of them, or write another delimiter or token in the configuration");
    }
}

void SubstitutionCheck::EscapesAtTheEnd(FindingSink& sink) const
{
    if (escaping.count != 0) {
        sink.Error("AC047", scope.PlaceOf("condition"),
                   fmt::format("a backslash stands before what closes the quotes around {}, at the end of {}",
                               placeholder, InWords(escaping)),
                   "where the query language escapes by a backslash, the quoted text goes on behind it: the filters of "
                   "users who have them break, or show whatever their next value says",
                   "take the backslash out of them, or map them by a values function");
    }
}

void SubstitutionCheck::NoWords(FindingSink& sink) const
{
    if (noWord.count != 0) {
        sink.Error("AC048", scope.PlaceOf("condition"),
                   fmt::format("{} stands outside of quotes, and something else than {} is in {}", placeholder,
                               isCompared ? "a number" : "a word or a number", InWords(noWord)),
                   "the query language reads it as a part of the condition, such as an operator or the name of a "
                   "column: the filters of users who have them break, or show other records than were meant",
                   fmt::format("write quotes around {} in the template{}, or correct the {}", placeholder,
                               isToken ? "" : " and into value_multiplicity_delimiter",
                               attributeName.empty() ? "grants" : "attributes"));
    }
}

void SubstitutionCheck::EmptyTexts(FindingSink& sink) const
{
    const CFG_Place& place = scope.PlaceOf("condition");
    const auto report = [&](const std::string& problem, const std::string& remedy) {
        if (matchesEverything) {
            sink.Error("AC049", place, problem,
                       "only a pattern that every text matches is left there: the field does not restrict these users",
                       remedy);
        } else if (isUnquoted) {
            sink.Error("AC049", place, problem,
                       "nothing is left in its place, not even quotes: the filters of these users break", remedy);
        } else if (!isToken) {
            sink.Warn("AC050", place, problem,
                      "these users see records in which the field is empty, and not those that were meant", remedy);
        }
    };
    if (emptied.count != 0) {
        const std::string instead = lookedUp != nullptr ? Instead(firstEmptied, *lookedUp) : "";
        const std::string& function = scope.condition.rule->function;
        report(fmt::format("{} the empty text for {}", isToken ? placeholder + " becomes" : function + " gives",
                           InWords(emptied)),
               isToken
                   ? "write the attribute's value in security_attribute; or delete the row, and add the token to "
                     "mandatory_fieldsN"
                   : fmt::format("{}add the value to the table that {} looks it up in, or correct the row{}", instead,
                                 function, isOwnEmptied ? "; for %my%, name the users' attribute in my_field" : ""));
    }
    if (lacking.count != 0) {
        report(fmt::format("{} becomes the empty text for users who are granted %my% and have no attribute '{}': {}",
                           placeholder, attributeName, lacking.InWords("user")),
               "add the token to mandatory_fieldsN, or give these users the attribute in security_attribute");
    }
}

void SubstitutionCheck::Wildcards(FindingSink& sink) const
{
    if (wildcards.count != 0) {
        sink.Error(
            "AC056", scope.PlaceOf("condition"),
            fmt::format("a wildcard alone stands for {}, which is a pattern, in {}", placeholder, InWords(wildcards)),
            "it matches every text: the field does not restrict users who have them",
            "if they are to see everything, set resource to NULL (without quotes) in security_permission; else "
            "write the value that was meant");
    }
}

void SubstitutionCheck::UnknownSites(FindingSink& sink) const
{
    if (unknownSites.count != 0) {
        sink.Error(
            "AC058", scope.PlaceOf("condition"),
            fmt::format("a site that is not configured is in {}", InWords(unknownSites)),
            "SiteIdToIssuer gives the issuer of all sites for it: users who have them see the records of that "
            "issuer, which nobody granted them",
            fmt::format("{}add the site as [zarvona.system.sites.SITE], or correct or delete the row{}",
                        Instead(firstUnknownSite, *lookedUp),
                        firstUnknownSite == ownValue ? "; for %my%, name the users' attribute in my_field" : ""));
    }
}

} // namespace secm::analysis
