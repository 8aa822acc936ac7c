#include "analysis/suite/Coverage.h"

#include "analysis/suite/SuiteRun.h"
#include "platform/configuration/CFG_Listing.h"
#include "platform/configuration/ConfigurationPaths.h"

#include <fmt/format.h>

#include <algorithm>

namespace secm::analysis {

namespace {

constexpr const char* codeFunction = "CodeToDisplayName";

std::string OutcomeItem(Outcome outcome)
{
    return fmt::format("the outcome {}", NameOf(outcome));
}

std::string FieldItem(const FieldRule& field, const char* what)
{
    return fmt::format("the field '{}' {}", field.name, what);
}

std::string ConditionItem(const FieldRule& field, const ConditionRule& condition, const char* what)
{
    return fmt::format("condition{} of the field '{}' {}", condition.number, field.name, what);
}

std::string CodeItem(const std::string& table, const std::string& code)
{
    return fmt::format("the code '{}' of the table '{}'", code, table);
}

constexpr const char* heldOutright = "is held outright";
constexpr const char* restrictsUser = "restricts a user";
constexpr const char* leavesNoValue = "leaves a user no value";
constexpr const char* byOneValue = "is filled by one value";
constexpr const char* bySeveralValues = "is filled by several values";
constexpr const char* byAttribute = "is filled by an attribute";
constexpr const char* isInFilter = "is used";
constexpr const char* addsNothing = "adds nothing";

bool HasValuesPlace(const ConditionRule& condition)
{
    return condition.text.find("%values%") != std::string::npos;
}

bool HasTokenPlace(const ConditionRule& condition)
{
    return std::any_of(condition.replaceTokens.begin(), condition.replaceTokens.end(),
                       [&](const std::string& token) { return condition.text.find(token) != std::string::npos; });
}

} // namespace

Coverage::Coverage(const RepositoryRules& rules)
{
    std::set<std::string> tables;
    Expect(OutcomeItem(Outcome::unrestricted));
    if (!rules.fields.empty()) {
        Expect(OutcomeItem(Outcome::restricted));
        Expect(OutcomeItem(Outcome::hideAll));
    }
    Expect(OutcomeItem(Outcome::unknownUser));
    for (const auto& field : rules.fields) {
        for (const char* what : {heldOutright, restrictsUser, leavesNoValue}) {
            Expect(FieldItem(*field, what));
        }
        for (const ConditionRule& condition : field->conditions) {
            const bool hasAttribute =
                HasTokenPlace(condition) || (!field->myField.empty() && HasValuesPlace(condition));
            if (HasValuesPlace(condition)) {
                Expect(ConditionItem(*field, condition, byOneValue));
                Expect(ConditionItem(*field, condition, bySeveralValues));
            } else if (!hasAttribute) {
                Expect(ConditionItem(*field, condition, isInFilter));
            }
            if (hasAttribute) {
                Expect(ConditionItem(*field, condition, byAttribute));
            }
            if (!condition.mandatoryTokens.empty()) {
                Expect(ConditionItem(*field, condition, addsNothing));
            }
            if (condition.isMapped && condition.function == codeFunction) {
                tables.insert(condition.functionConfiguration);
            }
        }
    }
    for (const std::string& table : tables) {
        const auto codes = CFG_ListEntries != nullptr ? CFG_ListEntries(configuration_paths::codeTables + table)
                                                      : std::vector<CFG_Entry>();
        for (const CFG_Entry& code : codes) {
            Expect(CodeItem(table, code.name));
        }
    }
}

void Coverage::Expect(std::string item)
{
    missing.insert(item);
    items.push_back(std::move(item));
}

void Coverage::Add(const Trace& trace)
{
    Reach(OutcomeItem(trace.answer.outcome));
    for (const FieldTrace& field : trace.fields) {
        AddField(field);
    }
}

void Coverage::AddField(const FieldTrace& field)
{
    Reach(FieldItem(*field.rule, field.isHeld               ? heldOutright
                                 : field.conditions.empty() ? leavesNoValue
                                                            : restrictsUser));
    for (const ConditionTrace& condition : field.conditions) {
        AddCondition(field, condition);
    }
}

void Coverage::AddCondition(const FieldTrace& field, const ConditionTrace& condition)
{
    const ConditionRule& rule = *condition.rule;
    if (condition.text.empty()) {
        Reach(ConditionItem(*field.rule, rule, addsNothing));
        return;
    }
    const std::vector<std::string> values = ValuesOf(field);
    const bool isOfAttribute = std::any_of(field.values.begin(), field.values.end(), [](const ValueTrace& value) {
        return value.attribute.has_value() && !value.value.empty();
    });
    Reach(ConditionItem(*field.rule, rule, isInFilter));
    if (!condition.attributes.empty() || isOfAttribute) {
        Reach(ConditionItem(*field.rule, rule, byAttribute));
    }
    Reach(ConditionItem(*field.rule, rule, values.size() == 1 ? byOneValue : bySeveralValues));
    if (rule.isMapped && rule.function == codeFunction) {
        for (const std::string& code : values) {
            Reach(CodeItem(rule.functionConfiguration, code));
        }
    }
}

std::vector<std::string> Coverage::Missing() const
{
    std::vector<std::string> unreached;
    std::copy_if(items.begin(), items.end(), std::back_inserter(unreached),
                 [this](const std::string& item) { return missing.count(item) != 0; });
    return unreached;
}

unsigned Coverage::Percent() const
{
    return items.empty() ? 100U : static_cast<unsigned>(100 * Reached() / All());
}

} // namespace secm::analysis
