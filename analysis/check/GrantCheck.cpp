#include "analysis/check/GrantCheck.h"

#include "SECM_AccessControl/TemplateLanguage.h"
#include "analysis/check/GrantRow.h"
#include "analysis/check/Spelling.h"
#include "analysis/check/TextAppearance.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace secm::analysis {

namespace {

template <class Predicate>
const CheckedCondition* FirstCondition(const CheckedDefinition& definition, Predicate predicate)
{
    const auto found = std::find_if(definition.conditions.begin(), definition.conditions.end(), predicate);
    return found != definition.conditions.end() ? &*found : nullptr;
}

bool LeavesValues(const CheckedCondition& condition)
{
    return condition.fillsTokens && condition.tokens.empty() && condition.Has(valuesPlaceholder);
}

bool SeemsToMeanEverything(const std::string& resource)
{
    constexpr std::array<std::string_view, 13> words = {"*",   "%",   "**",   "%%",     "*.*",    ".*",        "*:*",
                                                        "all", "any", "null", "<null>", "(null)", "everything"};
    return std::find(words.begin(), words.end(), Appearance(resource)) != words.end();
}

bool IsNearlyOwnValue(const std::string& resource, const FieldRule& field)
{
    constexpr std::array<std::string_view, 5> words = {"$my$", "{my}", "%my", "my%", "%%my%%"};
    if (resource == ownValue) {
        return false;
    }
    const std::string appearance = Appearance(resource);
    return appearance == ownValue || std::find(words.begin(), words.end(), appearance) != words.end() ||
           (resource.size() > ownValue.size() && resource.front() == '%' && Distance(resource, ownValue) == 1) ||
           (!field.myField.empty() &&
            (resource == field.myField || resource == "%" + AttributeName(field.myField) + "%"));
}

bool LeavesTokens(const CheckedCondition& condition)
{
    return condition.fillsTokens && condition.HasToken() && !condition.Has(valuesPlaceholder);
}

} // namespace

GrantCheck::GrantCheck(const CheckedRepository& repository, const CheckedDefinition& ofDefinition,
                       ConfiguredNames& names)
    : definition(ofDefinition), field(*definition.rule), leavingValues(FirstCondition(definition, LeavesValues)),
      leavingTokens(FirstCondition(definition, LeavesTokens))
{
    for (const CheckedCondition& condition : definition.conditions) {
        substitutions.emplace_back(CheckedScope{repository, definition, condition}, "", "", names);
    }
}

void GrantCheck::Check(const SECM_Grant& grant)
{
    if ((grant.permission.value() & field.permissionValue) != field.permissionValue) {
        return;
    }
    if (ResourceOf(grant) == nullptr) {
        return; // the field does not restrict its holders
    }
    const std::string resource = ResourceOf(grant);
    CheckMeaning(resource, grant);
    if (resource.empty()) {
        return; // the module drops it
    }
    (resource == ownValue ? own : others).Add(PositionOf(grant));
    if (resource == ownValue && !field.myField.empty()) {
        return; // the attribute's value replaces it
    }
    for (SubstitutionCheck& substitution : substitutions) {
        substitution.Check(resource, PositionOf(grant));
    }
}

void GrantCheck::CheckMeaning(const std::string& resource, const SECM_Grant& grant)
{
    const std::string row = fmt::format("{}, which is '{}'", PositionOf(grant), resource);
    if (resource.empty()) {
        empty.Add(PositionOf(grant));
    } else if (IsNearlyOwnValue(resource, field)) {
        misspeltOwn.Add(row);
    } else if (SeemsToMeanEverything(resource)) {
        // Not a value that records have: another template compares with it, or a values function knows it.
        // AC056 is about a wildcard in a pattern.
        const bool isWildcard = std::any_of(substitutions.begin(), substitutions.end(),
                                            [](const SubstitutionCheck& each) { return each.IsPattern(); });
        const bool isValue =
            isWildcard ||
            std::any_of(definition.conditions.begin(), definition.conditions.end(), [&](const CheckedCondition& each) {
                return each.rule->isMapped || each.Has("'" + resource + "'") || each.Has('"' + resource + '"');
            });
        if (!isValue) {
            everything.Add(row);
        }
    }
}

void GrantCheck::CheckMisspelt(const SECM_Grant& grant)
{
    misspelt[grant.permission.name()].Add(PositionOf(grant));
}

void GrantCheck::Report(FindingSink& sink, FindingSink& shared) const
{
    MisspeltPermissions(sink);
    OwnValueStays(sink);
    TokensStay(sink);
    Everything(shared);
    MisspeltOwnValues(shared);
    for (const SubstitutionCheck& substitution : substitutions) {
        substitution.Report(sink);
    }
}

void GrantCheck::Everything(FindingSink& shared) const
{
    const auto remedy = [&](const char* otherwise) {
        return fmt::format("if '{}' is to be granted without restriction, set resource to NULL (without quotes) in "
                           "security_permission, in these rows; {}",
                           field.permissionName, otherwise);
    };
    if (empty.count != 0) {
        shared.Warn("AC055", SecurityPlace(),
                    fmt::format("resource is the empty text, which is not NULL, in {}",
                                empty.InWords("grant", fmt::format(" of '{}'", field.permissionName))),
                    "an empty resource is dropped: users who have no other grant get the hide-all filter",
                    remedy("else write the resource, or delete them"));
    }
    if (everything.count != 0) {
        shared.Warn("AC055", SecurityPlace(),
                    fmt::format("resource seems to stand for everything in {}",
                                everything.InWords("grant", fmt::format(" of '{}'", field.permissionName))),
                    "it is a value like any other: users see only records that have this very text",
                    remedy("if records have this text, this is no mistake"));
    }
}

void GrantCheck::MisspeltOwnValues(FindingSink& shared) const
{
    if (misspeltOwn.count != 0) {
        shared.Warn("AC089", SecurityPlace(),
                    fmt::format("resource is nearly %my% in {}",
                                misspeltOwn.InWords("grant", fmt::format(" of '{}'", field.permissionName))),
                    "no attribute of the user takes its place: users see only records that have this very text",
                    "set resource to '%my%', in small letters and without blanks, in security_permission");
    }
}

void GrantCheck::MisspeltPermissions(FindingSink& sink) const
{
    for (const auto& [name, grants] : misspelt) {
        sink.Warn("AC041", definition.table.PlaceOf("permission_name"),
                  fmt::format("the permission '{}', which no field asks for, is nearly '{}' in {}", name,
                              field.permissionName, grants.InWords("grant")),
                  "these grants have no effect: users who have no other get the hide-all filter",
                  fmt::format("did you mean '{}'? then set permission_name to it in security_permission; upper and "
                              "lower case and blanks count",
                              field.permissionName));
    }
}

void GrantCheck::OwnValueStays(FindingSink& sink) const
{
    if (own.count != 0 && leavingValues != nullptr) {
        sink.Error("AC045", definition.table.PlaceOf("my_field"),
                   fmt::format("%my%, for which the field '{}' has neither my_field nor tokens in {}, is in {}",
                               field.name, leavingValues->Key("condition"), own.InWords("grant")),
                   "users with such a grant alone get a filter in which %values% stands as it is written; among other "
                   "values, %my% is a value as it is written",
                   "name the users' attribute in my_field");
    }
}

void GrantCheck::TokensStay(FindingSink& sink) const
{
    if (others.count != 0 && leavingTokens != nullptr) {
        const std::string condition = leavingTokens->Key("condition");
        sink.Error("AC046", definition.table.PlaceOf(condition),
                   fmt::format("something else than %my%, for which {} of the field '{}' has no %values%, is in {}",
                               condition, field.name, others.InWords("grant")),
                   "the tokens stay as they are written in the filters of users who have them",
                   "grant %my%, or write a condition with %values% (and my_field for %my%)");
    }
}

} // namespace secm::analysis
