// A field's definition for one repository: whether it is in force, and whether it restricts anybody.
#include "analysis/check/CheckRules.h"

#include "SECM_AccessControl/TemplateLanguage.h"
#include "analysis/definitions/KnownKeys.h"

#include <fmt/core.h>

#include <algorithm>
#include <string>

namespace secm::analysis {

namespace {

// By the key that is missing or wrong.
std::string RemedyForOmission(const std::string& key)
{
    const std::string remedy = key == "permission_value" ? "write the bits that a grant must have as a whole number, "
                                                           "such as permission_value = 1"
                               : key == "permission_name"
                                   ? "write permission_name = \"...\", the permission that users "
                                     "are granted"
                               : key == "condition1" ? "write condition1; the numbers begin with 1"
                                                     : "write what joins them, such as conditions_delimiter = \" OR "
                                                       "\" or \" AND \"";
    return remedy + "; or remove the table if the field is not to restrict anybody";
}

void LeftOut(const CheckedDefinition& definition, FindingSink& sink)
{
    if (!definition.IsInForce()) {
        sink.Error(
            "AC004", definition.table.PlaceOf(definition.rule->omitted.front().key),
            fmt::format("the field '{}' is left out: {}", definition.rule->name, InWords(definition.rule->omitted)),
            "it restricts nobody: users see records that it was to hide",
            RemedyForOmission(definition.rule->omitted.front().key));
    }
}

void EveryBitCounts(const CheckedDefinition& definition, FindingSink& sink)
{
    if (definition.IsInForce() && definition.rule->permissionValue == 0) {
        sink.Error("AC005", definition.table.PlaceOf("permission_value"), "permission_value is 0",
                   fmt::format("every grant of '{}' counts, whatever its bits: users see what they were granted for "
                               "another purpose, and every record where such a grant names no resource",
                               definition.rule->permissionName),
                   "write the bits that a grant must have, such as permission_value = 1");
    }
}

void NothingButMandatory(const CheckedDefinition& definition, FindingSink& sink)
{
    const auto canVanish = [](const CheckedCondition& condition) {
        const auto isMandatory = [&](const std::string& token) {
            return IsOneOf(condition.rule->mandatoryTokens, token);
        };
        return condition.fillsTokens && std::any_of(condition.tokens.begin(), condition.tokens.end(), isMandatory);
    };
    const auto& conditions = definition.conditions;
    if (!conditions.empty() && std::all_of(conditions.begin(), conditions.end(), canVanish)) {
        sink.Error("AC007", definition.table.place,
                   fmt::format("every condition of the field '{}' needs a mandatory attribute", definition.rule->name),
                   "users granted only %my% who lack the attribute are not restricted by this field: no condition is "
                   "left",
                   "add a condition that needs none, or take the token out of mandatory_fieldsN, so that a "
                   "missing attribute is replaced by the empty text");
    }
}

void ValuesMakeNoDifference(const CheckedDefinition& definition, FindingSink& sink)
{
    const auto usesNone = [](const CheckedCondition& condition) {
        return !condition.Has(valuesPlaceholder) && !condition.HasToken();
    };
    const auto& conditions = definition.conditions;
    if (!conditions.empty() && std::all_of(conditions.begin(), conditions.end(), usesNone)) {
        sink.Error("AC008", definition.table.PlaceOf("condition1"),
                   fmt::format("no condition of the field '{}' uses what is granted: there is neither %values% nor a "
                               "replace token",
                               definition.rule->name),
                   "users who are granted any value see what those see who are granted any other",
                   "write %values% where the granted values belong");
    }
}

void UnframedMyField(const CheckedDefinition& definition, FindingSink& sink)
{
    const std::string myField = definition.IsInForce() ? definition.rule->myField : "";
    if (!myField.empty() && !IsFramed(myField)) {
        sink.Warn(
            "AC030", definition.table.PlaceOf("my_field"), fmt::format("my_field '{}' is not framed by $", myField),
            fmt::format("its first and last character are dropped whatever they are: users granted %my% are asked "
                        "for their attribute '{}', and get no value from %my% without it",
                        AttributeName(myField)),
            "write it as in \"$employee_id$\"");
    }
}

} // namespace

void CheckDefinition(const CheckedDefinition& definition, FindingSink& sink)
{
    for (const auto rule : {LeftOut, EveryBitCounts, NothingButMandatory, ValuesMakeNoDifference, UnframedMyField}) {
        rule(definition, sink);
    }
}

} // namespace secm::analysis
