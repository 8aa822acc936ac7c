// The placeholders of a condition's template: written twice, beside tokens, or misspelt.
#include "analysis/check/CheckRules.h"

#include "SECM_AccessControl/TemplateLanguage.h"
#include "analysis/check/OpenQuote.h"
#include "analysis/check/Spelling.h"
#include "analysis/check/WordCharacter.h"

#include <fmt/core.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace secm::analysis {

namespace {

std::size_t Count(const std::string& text, std::string_view part)
{
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size()) {
        ++count;
    }
    return count;
}

void OnlyTheFirstIsFilled(const CheckedScope& scope, FindingSink& sink)
{
    const auto check = [&](std::string_view placeholder, std::size_t filled) {
        if (Count(scope.condition.rule->text, placeholder) > filled) {
            sink.Error("AC011", scope.PlaceOf("condition"), fmt::format("the template holds {} again", placeholder),
                       "only the first is filled in; the next stays in users' filters as it is written",
                       "write it once, or split the template into several conditions");
        }
    };
    check(valuesPlaceholder, 1);
    check(equalOperatorPlaceholder, 1);
    const std::vector<std::string>& replaced = scope.condition.rule->replaceTokens;
    for (const std::string& token : scope.condition.tokens) {
        check(token, static_cast<std::size_t>(std::count(replaced.begin(), replaced.end(), token)));
    }
}

void ValuesBesideTokens(const CheckedScope& scope, FindingSink& sink)
{
    if (scope.condition.fillsTokens && !scope.condition.tokens.empty() && scope.condition.Has(valuesPlaceholder)) {
        sink.Error("AC012", scope.PlaceOf("condition"), "the template has %values% and replace tokens",
                   "users granted only %my% get a filter in which %values% stands as it is written: with "
                   "replace tokens and without my_field, only the tokens are filled in for them",
                   "name the attribute in my_field instead of a token, or write the template without %values%");
    }
}

constexpr char mask = '\0'; // no template holds it

std::string Trimmed(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

bool IsAlike(std::string_view one, std::string_view other)
{
    return Distance(one, other) == 0;
}

// Whether `word`, between two percent signs, was meant to be `placeholder`. LIKE patterns stand between percent signs
// too, so a distance of two counts only when the first letter is right: '%sales%' is no misspelt %values%. No pattern
// stands outside of quotes, so the beginning or the end of the placeholder is enough there.
bool IsMisspelt(const std::string& word, const std::string& placeholder, bool isQuoted)
{
    constexpr std::size_t part = 3;
    const std::size_t distance = Distance(word, placeholder);
    return distance < 2 || (distance == 2 && IsAlike(word.substr(0, 1), placeholder.substr(0, 1))) ||
           (!isQuoted && word.size() >= part &&
            (IsAlike(word.substr(0, part), placeholder.substr(0, part)) || placeholder.ends_with(word)));
}

// The first misspelling of %NAME% in `text`, which is masked there; empty when there is none.
std::string TakeMisspelt(std::string& text, const std::string& name)
{
    for (std::size_t start = text.find('%'); start != std::string::npos; start = text.find('%', start + 1)) {
        const std::size_t end = text.find('%', start + 1);
        if (end != std::string::npos && IsMisspelt(Trimmed(text.substr(start + 1, end - start - 1)), name,
                                                   !OpenQuote(text.substr(0, start)).empty())) {
            std::string found = text.substr(start, end - start + 1);
            std::fill(text.begin() + static_cast<long>(start), text.begin() + static_cast<long>(end) + 1, mask);
            return found;
        }
    }
    for (std::size_t start = text.find(name); start != std::string::npos; start = text.find(name, start + 1)) {
        const std::size_t end = start + name.size();
        const char before = start > 0 ? text[start - 1] : mask;
        const char after = end < text.size() ? text[end] : mask;
        if (!IsWordCharacter(before) && !IsWordCharacter(after) && (before == '%') != (after == '%')) {
            std::fill(text.begin() + static_cast<long>(start), text.begin() + static_cast<long>(end), mask);
            return before == '%' ? "%" + name : name + "%";
        }
    }
    return "";
}

void MisspeltPlaceholder(const CheckedScope& scope, FindingSink& sink)
{
    const auto add = [&](const std::string& found, const std::string& remedy) {
        sink.Error("AC013", scope.PlaceOf("condition"),
                   fmt::format("the template holds {}, which is no placeholder", found),
                   "it stays in users' filters as it is written", remedy);
    };
    std::string text = scope.condition.rule->text;
    for (const std::string_view placeholder : {valuesPlaceholder, equalOperatorPlaceholder}) {
        for (std::size_t at = 0; (at = text.find(placeholder, at)) != std::string::npos;) {
            text.replace(at, placeholder.size(), 1, mask);
        }
    }
    for (const std::string name : {"values", "equal_operator"}) {
        for (std::string found; !(found = TakeMisspelt(text, name)).empty();) {
            add(found, fmt::format("write %{}%", name));
        }
    }
    if (text.find(ownValue) != std::string::npos) {
        add(std::string(ownValue),
            "%my% is a value that is granted; write %values% and name the attribute in my_field");
    }
}

} // namespace

void CheckPlaceholders(const CheckedScope& scope, FindingSink& sink)
{
    for (const auto rule : {OnlyTheFirstIsFilled, ValuesBesideTokens, MisspeltPlaceholder}) {
        rule(scope, sink);
    }
}

} // namespace secm::analysis
