#include "analysis/trace/Reasons.h"

#include <algorithm>

namespace secm::analysis {

namespace {

std::string WhyHidden(const FieldTrace& field)
{
    const std::string permission =
        "'" + field.rule->permissionName + "', value " + std::to_string(field.rule->permissionValue) + ",";
    if (!field.resourcesAreTold) {
        return "the security manager failed to list the resources for which " + permission + " is granted";
    }
    if (field.values.empty()) {
        return permission + " is granted neither outright nor for any resource";
    }
    return "every resource for which " + permission + " is granted is empty, or becomes empty";
}

bool IsMandatory(const ConditionRule& rule, const std::string& token)
{
    return std::binary_search(rule.mandatoryTokens.begin(), rule.mandatoryTokens.end(), token);
}

} // namespace

std::string WhyNotComposed(const Trace& trace)
{
    if (trace.answer.outcome == Outcome::unknownUser) {
        return "the security manager does not know the user";
    }
    if (trace.answer.outcome != Outcome::hideAll) {
        return {};
    }
    if (trace.fields.empty()) {
        return "the security manager has no permission list for the user";
    }
    return "field '" + trace.fields.back().rule->name + "': " + WhyHidden(trace.fields.back());
}

std::string WhyEmpty(const ConditionTrace& condition)
{
    if (!condition.text.empty()) {
        return {};
    }
    if (!condition.userIsTold) {
        return "the security manager gives no details of the user";
    }
    if (!condition.attributes.empty() && !condition.attributes.back().value &&
        IsMandatory(*condition.rule, "$" + condition.attributes.back().name + "$")) {
        return "the user has no attribute '" + condition.attributes.back().name + "', which is mandatory";
    }
    return "the filled template is empty";
}

bool RestrictsNothing(const FieldTrace& field)
{
    return !field.conditions.empty() && field.clause.empty();
}

} // namespace secm::analysis
