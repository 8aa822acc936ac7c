// A field's definition for one repository. The module may have left it out; what is wrong with its numbering is told
// all the same.
#include "analysis/check/ConfigurationCheck.h"

#include "analysis/definitions/KnownKeys.h"

#include <algorithm>

namespace secm::analysis {

namespace {

void LeftOut(const CheckedDefinition& definition, Report& report)
{
    if (!definition.IsInForce()) {
        report.Error("AC004", definition.table.PlaceOf(definition.rule->omitted.front().key),
                     "the field '" + definition.rule->name + "' is left out: " + InWords(definition.rule->omitted),
                     "it restricts nobody: users see records that it was to hide",
                     "mend that, or remove the table if the field is not to restrict anybody");
    }
}

void EveryBitCounts(const CheckedDefinition& definition, Report& report)
{
    if (definition.IsInForce() && definition.rule->permissionValue == 0) {
        report.Error("AC005", definition.table.PlaceOf("permission_value"), "permission_value is 0",
                     "every grant of '" + definition.rule->permissionName +
                         "' counts, whatever its bits: users see what they were granted for another purpose, and every "
                         "record where such a grant names no resource",
                     "write the bits that a grant must have, such as permission_value = 1");
    }
}

void NothingButMandatory(const CheckedDefinition& definition, Report& report)
{
    const auto canVanish = [](const CheckedCondition& condition) {
        const auto isMandatory = [&](const std::string& token) {
            return IsOneOf(condition.rule->mandatoryTokens, token);
        };
        return condition.fillsTokens && std::any_of(condition.tokens.begin(), condition.tokens.end(), isMandatory);
    };
    const auto& conditions = definition.conditions;
    if (!conditions.empty() && std::all_of(conditions.begin(), conditions.end(), canVanish)) {
        report.Error("AC007", definition.table.place,
                     "every condition of the field '" + definition.rule->name + "' needs a mandatory attribute",
                     "users granted only %my% who lack the attribute are not restricted by this field: no condition is "
                     "left",
                     "add a condition that needs none, or take the token out of mandatory_fieldsN, so that what is "
                     "missing goes in as the empty text");
    }
}

void ValuesMakeNoDifference(const CheckedDefinition& definition, Report& report)
{
    const auto usesNone = [](const CheckedCondition& condition) {
        return !condition.Has(valuesPlaceholder) && !condition.HasToken();
    };
    const auto& conditions = definition.conditions;
    if (!conditions.empty() && std::all_of(conditions.begin(), conditions.end(), usesNone)) {
        report.Error("AC008", definition.table.PlaceOf("condition1"),
                     "no condition of the field '" + definition.rule->name +
                         "' uses what is granted: there is neither %values% nor a replace token",
                     "users who are granted any value see what those see who are granted any other",
                     "write %values% where the granted values belong");
    }
}

void ConditionsBehindAGap(const CheckedDefinition& definition, Report& report)
{
    unsigned gap = 1;
    while (!definition.table.Text("condition" + std::to_string(gap)).empty()) {
        ++gap;
    }
    for (const CFG_Entry& entry : definition.table.entries) {
        if (NumberOf(entry.name, "condition") > gap && !definition.table.Text(entry.name).empty()) {
            report.Warn("AC021", entry.place,
                        entry.name + " is not read: " + definition.table.Lack("condition" + std::to_string(gap)),
                        "no user's filter holds it: users see more than was meant where it was to restrict, and less "
                        "where it was to allow",
                        "number the conditions from 1 without a gap");
        }
    }
}

void KeysWithoutCondition(const CheckedDefinition& definition, Report& report)
{
    for (const CFG_Entry& entry : definition.table.entries) {
        for (const std::string& base : numberedKeys) {
            const unsigned number = NumberOf(entry.name, base);
            const std::string condition = "condition" + std::to_string(number);
            if (base != "condition" && number != 0 && definition.table.Text(condition).empty()) {
                report.Warn("AC022", entry.place, entry.name + " is not read: " + definition.table.Lack(condition),
                            "no user's filter holds what it was meant for",
                            "write " + condition + ", or remove the key");
            }
        }
    }
}

void ConfigurationsWithoutFunction(const CheckedDefinition& definition, Report& report)
{
    for (const CFG_Entry& entry : definition.table.entries) {
        const std::string number = std::to_string(NumberOf(entry.name, "values_function_config_string"));
        const std::string function = "values_function" + number;
        if (number != "0" && !definition.table.Text("condition" + number).empty() &&
            definition.table.Text(function).empty()) {
            report.Warn("AC023", entry.place, entry.name + " is not read: " + definition.table.Lack(function),
                        "users' values go into condition" + number + " as they were granted, unmapped",
                        "write " + function + ", such as \"CodeToDisplayName\", or remove the key");
        }
    }
}

void UnframedMyField(const CheckedDefinition& definition, Report& report)
{
    const std::string myField = definition.IsInForce() ? definition.rule->myField : "";
    if (!myField.empty() && !IsFramed(myField)) {
        report.Warn(
            "AC030", definition.table.PlaceOf("my_field"), "my_field '" + myField + "' is not framed by $",
            "its first and last character are dropped whatever they are: users granted %my% are asked for their "
            "attribute '" +
                AttributeName(myField) + "', and get no value from %my% without it",
            "write it as in \"$employee_id$\"");
    }
}

} // namespace

void CheckDefinition(const CheckedDefinition& definition, Report& report)
{
    for (const auto rule : {LeftOut, EveryBitCounts, NothingButMandatory, ValuesMakeNoDifference, ConditionsBehindAGap,
                            KeysWithoutCondition, ConfigurationsWithoutFunction, UnframedMyField}) {
        rule(definition, report);
    }
}

} // namespace secm::analysis
