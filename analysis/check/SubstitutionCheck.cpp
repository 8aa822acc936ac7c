#include "analysis/check/SubstitutionCheck.h"

#include "SECM_AccessControl/TemplateLanguage.h"
#include "analysis/check/OpenQuote.h"
#include "analysis/check/WordCharacter.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace secm::analysis {

namespace {

bool EndsWithEscape(const std::string& text)
{
    const std::size_t last = text.find_last_not_of('\\');
    const std::size_t backslashes = text.size() - (last == std::string::npos ? 0 : last + 1);
    return backslashes % 2 == 1; // each pair is an escaped backslash
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

SubstitutionCheck::SubstitutionCheck(const CheckedScope& inScope, const std::string& token, std::string attribute)
    : scope(inScope), isToken(!token.empty()), placeholder(isToken ? token : valuesPlaceholder),
      attributeName(std::move(attribute))
{
    const std::string& text = scope.condition.rule->text;
    const std::size_t at = text.find(placeholder);
    if (at == std::string::npos) {
        return; // nothing goes in
    }
    const std::string before = text.substr(0, at);
    const std::string behind = text.substr(at + placeholder.size());
    isUsed = true;
    disturbing = scope.condition.tokens;
    disturbing.insert(disturbing.end(), {std::string(valuesPlaceholder), std::string(equalOperatorPlaceholder)});
    AddPlace(before, behind);
    if (!isToken) {
        const FilterSettings& settings = scope.repository.Rules().settings;
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
        emptied.Add(isToken ? where : fmt::format("{}, which is '{}'", where, text));
        isOwnEmptied = isOwnEmptied || text == ownValue;
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
    if (isUnquoted && !std::all_of(filled.begin(), filled.end(), IsWordCharacter)) {
        noWord.Add(where);
    }
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
                   fmt::format("no quote is open around {}, and something else than A to Z, a to z, 0 to 9 and _ is in "
                               "{}",
                               placeholder, InWords(noWord)),
                   "it is read as a part of the condition: the filters of users who have them break, or show whatever "
                   "the text says",
                   fmt::format("write quotes around {} in the template{}, or take it out of them", placeholder,
                               isToken ? "" : " and into value_multiplicity_delimiter"));
    }
}

void SubstitutionCheck::EmptyTexts(FindingSink& sink) const
{
    if (emptied.count == 0) {
        return;
    }
    const CFG_Place& place = scope.PlaceOf("condition");
    const std::string problem =
        fmt::format("{} the empty text for {}",
                    isToken ? placeholder + " becomes" : scope.condition.rule->function + " gives", InWords(emptied));
    const std::string remedy =
        isToken ? "write the attribute's value; or delete it, and make the token mandatory"
                : fmt::format("add them to what the values function looks up, or take them away{}",
                              isOwnEmptied ? "; for %my%, name the users' attribute in my_field" : "");
    if (matchesEverything) {
        sink.Error("AC049", place, problem,
                   "a pattern that every text matches is all that is left there: the field does not restrict users who "
                   "have them",
                   remedy);
    } else if (isUnquoted) {
        sink.Error("AC049", place, problem,
                   "nothing is left in its place, not even quotes: the filters of users who have them break", remedy);
    } else if (!isToken) {
        sink.Warn("AC050", place, problem,
                  "users who have them see records in which the field is empty, and not those that were meant", remedy);
    }
}

} // namespace secm::analysis
