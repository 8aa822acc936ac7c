#include "analysis/check/SubstitutionCheck.h"

#include "analysis/check/OpenQuote.h"
#include "analysis/check/Spelling.h"

#include <algorithm>

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

void Tally::Add(const std::string& one)
{
    if (count++ == 0) {
        first = one;
    }
}

std::string Tally::Count(const std::string& noun, const std::string& of) const
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s") + of + "; the first is " + first;
}

Inlet::Inlet(const CheckedScope& inScope, const std::string& token, std::string attribute)
    : scope(inScope), manager(*scope.repository.manager), condition(*scope.condition.rule),
      place(scope.PlaceOf("condition")), isToken(!token.empty()), placeholder(isToken ? token : valuesPlaceholder),
      attributeName(std::move(attribute))
{
    const std::size_t at = condition.text.find(placeholder);
    if (at == std::string::npos) {
        return; // nothing goes in
    }
    const std::string before = condition.text.substr(0, at);
    const std::string behind = condition.text.substr(at + placeholder.size());
    isUsed = true;
    disturbing = scope.condition.tokens;
    disturbing.insert(disturbing.end(), {std::string(valuesPlaceholder), std::string(equalOperatorPlaceholder)});
    AddPlace(before, behind);
    if (!isToken) {
        const std::string first = before + manager.Rules().settings.valueMultiplicityPrefix;
        const std::string& delimiter = manager.Rules().settings.valueMultiplicityDelimiter;
        AddPlace(first, delimiter);
        AddPlace(first + delimiter, delimiter);
        AddPlace(first + delimiter, manager.Rules().settings.valueMultiplicitySuffix + behind);
        disturbing.push_back(delimiter);
    }
    std::erase(disturbing, "");
}

void Inlet::AddPlace(const std::string& before, const std::string& behind)
{
    const std::string quote = OpenQuote(before);
    quotes += quote;
    isUnquoted = isUnquoted || quote.empty();
    matchesEverything = matchesEverything || MatchesEverything(before, behind, quote);
}

void Inlet::Look(const std::string& text, const std::string& where)
{
    const bool isNoValue = text.empty() || (text == ownValue && scope.condition.fillsTokens);
    if (!isUsed || (isNoValue && !isToken)) {
        return;
    }
    const std::string filled = isToken ? text : manager.Mapped(text, condition);
    if (filled.empty()) {
        emptied.Add(where + (isToken ? "" : ", which is '" + text + "'"));
        isOwnEmptied = isOwnEmptied || text == ownValue;
    }
    if (filled.find_first_of(quotes) != std::string::npos) {
        quoted.Add(where);
    }
    const auto isHeld = [&](const std::string& part) { return filled.find(part) != std::string::npos; };
    const auto found = std::find_if(disturbing.begin(), disturbing.end(), isHeld);
    if (found != disturbing.end()) {
        disturbed.Add(where + ", which holds '" + *found + "'");
    }
    if (!quotes.empty() && EndsWithEscape(filled)) {
        escaping.Add(where);
    }
    if (isUnquoted && !std::all_of(filled.begin(), filled.end(), IsWordCharacter)) {
        noWord.Add(where);
    }
}

std::string Inlet::Counted(const Tally& tally) const
{
    return attributeName.empty() ? tally.Count("grant")
                                 : tally.Count("value", " of the attribute '" + attributeName + "'");
}

void Inlet::Tell(Report& report) const
{
    if (quoted.count != 0) {
        report.Error("AC043", place, "the quote around " + placeholder + " is also in " + Counted(quoted),
                     "it ends the quoted text early: the filters of users who have them break, or show whatever the "
                     "rest of the text says",
                     "take the quote out of them, or map them by a values function");
    }
    if (disturbed.count != 0) {
        report.Error("AC044", place, "a placeholder, a token or the delimiter of values is in " + Counted(disturbed),
                     "in the filters of users who have them, it is filled in a second time, left as it is written, or "
                     "taken for several values",
                     "take it out of them, or write another delimiter or token in the configuration");
    }
    if (escaping.count != 0) {
        report.Error("AC047", place,
                     "a backslash stands before what closes the quotes around " + placeholder + ", at the end of " +
                         Counted(escaping),
                     "where the query language escapes by a backslash, the quoted text goes on behind it: the filters "
                     "of users who have them break, or show whatever their next value says",
                     "take the backslash out of them, or map them by a values function");
    }
    if (noWord.count != 0) {
        report.Error("AC048", place,
                     "no quote is open around " + placeholder +
                         ", and something else than A to Z, a to z, 0 to 9 and _ is in " + Counted(noWord),
                     "it is read as a part of the condition: the filters of users who have them break, or show "
                     "whatever the text says",
                     "write quotes around " + placeholder + " in the template" +
                         (isToken ? "" : " and into value_multiplicity_delimiter") + ", or take it out of them");
    }
    if (emptied.count != 0) {
        TellEmptied(report);
    }
}

void Inlet::TellEmptied(Report& report) const
{
    const std::string problem = (isToken ? placeholder + " becomes" : scope.Text("values_function") + " gives") +
                                " the empty text for " + Counted(emptied);
    const std::string remedy = isToken
                                   ? "write the attribute's value; or delete it, and make the token mandatory"
                                   : std::string("add them to what the values function looks up, or take them away") +
                                         (isOwnEmptied ? "; for %my%, name the users' attribute in my_field" : "");
    if (matchesEverything) {
        report.Error("AC049", place, problem,
                     "a pattern that every text matches is all that is left there: the field does not restrict users "
                     "who have them",
                     remedy);
    } else if (isUnquoted) {
        report.Error("AC049", place, problem,
                     "nothing is left in its place, not even quotes: the filters of users who have them break", remedy);
    } else if (!isToken) {
        report.Warn("AC050", place, problem,
                    "users who have them see records in which the field is empty, and not those that were meant",
                    remedy);
    }
}

} // namespace secm::analysis
