#include "analysis/check/GrantCheck.h"

#include "SECM_AccessControl/TemplateLanguage.h"

#include <fmt/core.h>

#include <algorithm>

namespace secm::analysis {

namespace {

std::string PositionOf(const SECM_Grant& grant)
{
    return fmt::format("that at position {}", grant.position);
}

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

bool LeavesTokens(const CheckedCondition& condition)
{
    return condition.fillsTokens && condition.HasToken() && !condition.Has(valuesPlaceholder);
}

} // namespace

GrantCheck::GrantCheck(const CheckedRepository& repository, const CheckedDefinition& ofDefinition)
    : definition(ofDefinition), field(*definition.rule), leavingValues(FirstCondition(definition, LeavesValues)),
      leavingTokens(FirstCondition(definition, LeavesTokens))
{
    for (const CheckedCondition& condition : definition.conditions) {
        substitutions.emplace_back(CheckedScope{repository, definition, condition}, "", "");
    }
}

void GrantCheck::Check(const SECM_Grant& grant)
{
    isNamed = true;
    if (grant.permission.resource() == nullptr) {
        // A user's outright grants add up. Whose they are is not kept, so that memory does not grow with the users.
        outrightBits |= grant.permission.value();
        isGranted = isGranted || (outrightBits & field.permissionValue) == field.permissionValue;
        return;
    }
    if ((grant.permission.value() & field.permissionValue) != field.permissionValue) {
        return;
    }
    isGranted = true;
    const std::string resource = grant.permission.resource();
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

void GrantCheck::CheckMisspelt(const SECM_Grant& grant)
{
    misspelt[grant.permission.name()].Add(PositionOf(grant));
}

void GrantCheck::Report(FindingSink& sink) const
{
    NobodyIsGranted(sink);
    MisspeltPermissions(sink);
    OwnValueStays(sink);
    TokensStay(sink);
    for (const SubstitutionCheck& substitution : substitutions) {
        substitution.Report(sink);
    }
}

void GrantCheck::NobodyIsGranted(FindingSink& sink) const
{
    if (!isGranted) {
        sink.Warn(
            "AC040", definition.table.PlaceOf("permission_name"),
            fmt::format("nobody is granted '{}'{}", field.permissionName,
                        isNamed ? fmt::format(" with all the bits of permission_value {}", field.permissionValue) : ""),
            "every user who is known gets the hide-all filter",
            isNamed ? "grant these bits, or ask for others in permission_value"
                    : "grant it, or write the permission's name as in the security database");
    }
}

void GrantCheck::MisspeltPermissions(FindingSink& sink) const
{
    for (const auto& [name, grants] : misspelt) {
        sink.Warn("AC041", definition.table.PlaceOf("permission_name"),
                  fmt::format("'{}', which no field asks for, stands in place of '{}' in {}", name,
                              field.permissionName, grants.InWords("grant")),
                  "they count for nothing: users who have no other get the hide-all filter",
                  "write the name alike in both places, upper and lower case and blanks too");
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
