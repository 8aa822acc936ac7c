// The tokens of replace_fieldsN and mandatory_fieldsN, and whether the module fills them in.
#include "analysis/check/CheckRules.h"

#include "SECM_AccessControl/TemplateLanguage.h"
#include "analysis/check/WordCharacter.h"
#include "analysis/definitions/KnownKeys.h"

#include <fmt/core.h>

#include <algorithm>
#include <string>
#include <vector>

namespace secm::analysis {

namespace {

void TokensNobodyFills(const CheckedScope& scope, FindingSink& sink)
{
    if (!scope.condition.fillsTokens && scope.condition.HasToken()) {
        const bool hasMyField = !scope.definition.rule->myField.empty();
        sink.Error(
            "AC014", scope.PlaceOf("replace_fields"),
            fmt::format("the replace tokens stand beside {}", hasMyField ? "my_field" : "a values function"),
            fmt::format(
                "they stay in users' filters as they are written: only the value %my% fills tokens, and {} replaces it "
                "before",
                hasMyField ? "my_field" : "the values function"),
            hasMyField ? "write %values% in place of the token, or remove my_field"
                       : "remove the values function, or write %values% in place of the token");
    }
}

// A name between two $ that replace_fieldsN does not hold. One with a blank too many there is UnframedTokens' finding.
void TokensOfNoList(const CheckedScope& scope, FindingSink& sink)
{
    const std::string& text = scope.condition.rule->text;
    const std::string listed = scope.Text("replace_fields");
    for (std::size_t start = text.find('$'); start != std::string::npos;) {
        const auto end = std::find_if_not(text.begin() + static_cast<long>(start) + 1, text.end(), IsWordCharacter);
        const std::string token(text.begin() + static_cast<long>(start), end == text.end() ? end : end + 1);
        if (token.size() > 2 && token.back() == '$' && listed.find(token) == std::string::npos) {
            const std::string key = scope.condition.Key("replace_fields");
            sink.Warn("AC034", scope.PlaceOf("condition"),
                      fmt::format("'{}' looks like a token and is not in {}", token, key),
                      "it stays in users' filters as it is written",
                      fmt::format("add it to {}, unless the language itself wants it", key));
        }
        start = text.find('$', start + token.size());
    }
}

std::vector<std::string> TokensOf(const CheckedScope& scope, const char* base)
{
    return scope.repository.manager->TokensOf(scope.Text(base));
}

void UnframedTokens(const CheckedScope& scope, FindingSink& sink)
{
    const auto check = [&](const char* base, const char* effect) {
        for (const std::string& token : TokensOf(scope, base)) {
            if (!IsFramed(token)) {
                const bool hasBlank = token.starts_with(' ') || token.ends_with(' ');
                sink.Warn("AC027", scope.PlaceOf(base), fmt::format("the token '{}' is not framed by $", token), effect,
                          hasBlank ? "remove the blank beside the comma: it is part of the token"
                                   : "write it as in \"$region$\", in the template too");
            }
        }
    };
    check("mandatory_fields", "it is ignored: users who lack the attribute get the condition all the same");
    check("replace_fields", "it is ignored: where the template has it, it stays in users' filters");
}

void MandatoryButNotReplaced(const CheckedScope& scope, FindingSink& sink)
{
    for (const std::string& token : TokensOf(scope, "mandatory_fields")) {
        if (IsFramed(token) && !IsOneOf(scope.condition.tokens, token)) {
            const std::string key = scope.condition.Key("replace_fields");
            sink.Warn("AC028", scope.PlaceOf("mandatory_fields"),
                      fmt::format("the mandatory token '{}' is not in {}", token, key),
                      "nobody asks for its attribute: users who lack it get the condition all the same",
                      fmt::format("add it to {}, or remove it here", key));
        }
    }
}

void ReplacedButNotWritten(const CheckedScope& scope, FindingSink& sink)
{
    if (scope.condition.fillsTokens && scope.condition.Has(valuesPlaceholder)) {
        return; // the tokens are the mistake there (AC012), not the template
    }
    for (const std::string& token : scope.condition.tokens) {
        if (!scope.condition.Has(token)) {
            sink.Warn("AC029", scope.PlaceOf("replace_fields"),
                      fmt::format("the token '{}' does not stand in the template", token),
                      fmt::format("users granted %my% are not restricted to their own '{}'", AttributeName(token)),
                      fmt::format("write it in {}, or remove it here", scope.condition.Key("condition")));
        }
    }
}

} // namespace

void CheckTokens(const CheckedScope& scope, FindingSink& sink)
{
    for (const auto rule :
         {TokensNobodyFills, UnframedTokens, MandatoryButNotReplaced, ReplacedButNotWritten, TokensOfNoList}) {
        rule(scope, sink);
    }
}

} // namespace secm::analysis
