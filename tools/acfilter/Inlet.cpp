#include "tools/acfilter/Inlet.h"

#include "tools/acfilter/OpenQuote.h"

#include <algorithm>

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

Inlet::Inlet(const CheckedScope& scope, const std::string& token, std::string attribute)
    : manager(*scope.repository.manager), condition(*scope.condition.read), place(scope.PlaceOf("condition")),
      isToken(!token.empty()), placeholder(isToken ? token : valuesPlaceholder), attributeName(std::move(attribute))
{
    const std::size_t at = condition.conditionText.find(placeholder);
    if (at == std::string::npos) {
        return; // nothing goes in
    }
    const std::string before = condition.conditionText.substr(0, at);
    quotes = OpenQuote(before);
    disturbing = scope.condition.tokens;
    disturbing.insert(disturbing.end(), {std::string(valuesPlaceholder), std::string(equalOperatorPlaceholder)});
    if (!isToken) {
        quotes += OpenQuote(before + manager.valueMultiplicityPrefix);
        disturbing.push_back(manager.valueMultiplicityDelimiter);
    }
    std::erase(disturbing, "");
}

void Inlet::Look(const std::string& text, const std::string& where)
{
    const std::string filled = isToken ? text : manager.ApplyValuesFunction(text, condition);
    if (filled.find_first_of(quotes) != std::string::npos) {
        quoted.Add(where);
    }
    const auto isHeld = [&](const std::string& part) { return filled.find(part) != std::string::npos; };
    const auto found = std::find_if(disturbing.begin(), disturbing.end(), isHeld);
    if (found != disturbing.end()) {
        disturbed.Add(where + ", which holds '" + *found + "'");
    }
}

void Inlet::Tell(Report& report) const
{
    const auto in = [&](const Tally& tally) {
        return attributeName.empty() ? tally.Count("grant")
                                     : tally.Count("value", " of the attribute '" + attributeName + "'");
    };
    if (quoted.count != 0) {
        report.Error("AC043", place, "the quote around " + placeholder + " is also in " + in(quoted),
                     "it ends the quoted text early: the filters of users who have them break, or show whatever the "
                     "rest of the text says",
                     "take the quote out of them, or map them by a values function");
    }
    if (disturbed.count != 0) {
        report.Error("AC044", place, "a placeholder, a token or the delimiter of values is in " + in(disturbed),
                     "in the filters of users who have them, it is filled in a second time, left as it is written, or "
                     "taken for several values",
                     "take it out of them, or write another delimiter or token in the configuration");
    }
}
