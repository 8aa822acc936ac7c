// The numbers of a definition's conditions and of the keys that belong to them, also where the module left the
// definition out.
#include "analysis/check/CheckRules.h"

#include "analysis/definitions/KnownKeys.h"

#include <fmt/core.h>

#include <string>
#include <string_view>

namespace secm::analysis {

namespace {

std::string ConditionKey(unsigned number)
{
    return fmt::format("condition{}", number);
}

void ConditionsBehindAGap(const CheckedDefinition& definition, FindingSink& sink)
{
    unsigned gap = 1;
    while (!definition.table.Text(ConditionKey(gap)).empty()) {
        ++gap;
    }
    for (const CFG_Entry& entry : definition.table.entries) {
        if (NumberOf(entry.name, "condition") > gap && !definition.table.Text(entry.name).empty()) {
            sink.Error("AC021", entry.place,
                       fmt::format("{} is not read: {}", entry.name, definition.table.Lack(ConditionKey(gap))),
                       "no user's filter has it: users see more than was meant where it was to restrict, and less "
                       "where it was to allow",
                       "number the conditions from 1 without a gap");
        }
    }
}

void KeysWithoutCondition(const CheckedDefinition& definition, FindingSink& sink)
{
    for (const CFG_Entry& entry : definition.table.entries) {
        for (const std::string_view base : numberedKeys) {
            const unsigned number = NumberOf(entry.name, base);
            const std::string condition = ConditionKey(number);
            if (base != "condition" && number != 0 && definition.table.Text(condition).empty()) {
                sink.Warn("AC022", entry.place,
                          fmt::format("{} is not read: {}", entry.name, definition.table.Lack(condition)),
                          "no user's filter holds what it was meant for",
                          fmt::format("write {}, or remove the key", condition));
            }
        }
    }
}

void ConfigurationsWithoutFunction(const CheckedDefinition& definition, FindingSink& sink)
{
    for (const CFG_Entry& entry : definition.table.entries) {
        const unsigned number = NumberOf(entry.name, "values_function_config_string");
        const std::string function = fmt::format("values_function{}", number);
        if (number != 0 && !definition.table.Text(ConditionKey(number)).empty() &&
            definition.table.Text(function).empty()) {
            sink.Warn("AC023", entry.place,
                      fmt::format("{} is not read: {}", entry.name, definition.table.Lack(function)),
                      fmt::format("users' values go into condition{} as they were granted, unmapped", number),
                      fmt::format("write {}, such as \"CodeToDisplayName\", or remove the key", function));
        }
    }
}

} // namespace

void CheckConditionNumbers(const CheckedDefinition& definition, FindingSink& sink)
{
    for (const auto rule : {ConditionsBehindAGap, KeysWithoutCondition, ConfigurationsWithoutFunction}) {
        rule(definition, sink);
    }
}

} // namespace secm::analysis
