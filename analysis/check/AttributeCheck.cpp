#include "analysis/check/AttributeCheck.h"

#include "SECM_AccessControl/TemplateLanguage.h"

#include <fmt/core.h>

#include <utility>

namespace secm::analysis {

AttributeCheck::AttributeCheck(std::string ofName, std::string askedForBy, const CFG_Place& askedForAt, bool givesValue)
    : name(std::move(ofName)), asker(std::move(askedForBy)), place(askedForAt), isValue(givesValue)
{
}

AttributeCheck AttributeCheck::OfMyField(const CheckedRepository& repository, const CheckedDefinition& definition,
                                         ConfiguredNames& names)
{
    AttributeCheck check(AttributeName(definition.rule->myField), "my_field", definition.table.PlaceOf("my_field"),
                         true);
    for (const CheckedCondition& condition : definition.conditions) {
        check.substitutions.emplace_back(CheckedScope{repository, definition, condition}, "", check.name, names);
    }
    return check;
}

AttributeCheck AttributeCheck::OfToken(const CheckedScope& scope, const std::string& token, ConfiguredNames& names)
{
    AttributeCheck check(AttributeName(token), fmt::format("the token '{}'", token), scope.PlaceOf("replace_fields"),
                         false);
    check.substitutions.emplace_back(scope, token, check.name, names);
    return check;
}

void AttributeCheck::Check(const SECM_Attribute& attribute)
{
    isHeld = true;
    for (SubstitutionCheck& substitution : substitutions) {
        substitution.Check(attribute.value, fmt::format("that of the user '{}'", attribute.userName));
    }
}

void AttributeCheck::Report(FindingSink& sink) const
{
    if (!isHeld) {
        sink.Warn("AC042", place, fmt::format("{} asks for the attribute '{}', which no user has", asker, name),
                  isValue ? "users granted %my% get no value from it, and the hide-all filter when they have no other"
                          : "users granted %my% get the empty text in its place or, where it is mandatory, the field "
                            "without this condition",
                  "write the attribute's name as in the security database, or give it to the users");
    }
    for (const SubstitutionCheck& substitution : substitutions) {
        substitution.Report(sink);
    }
}

} // namespace secm::analysis
