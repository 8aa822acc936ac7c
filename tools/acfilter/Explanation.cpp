#include "tools/acfilter/Explanation.h"

namespace {

std::string WhyHidden(const FieldAccount& field)
{
    const std::string permission =
        "'" + field.definition->permissionName + "', value " + std::to_string(field.definition->permissionValue) + ",";
    if (!field.resourcesAreTold) {
        return "the security manager could not tell for which resources " + permission + " is granted";
    }
    if (field.values.empty()) {
        return permission + " is granted neither outright nor for any resource";
    }
    return "every resource for which " + permission + " is granted came out empty";
}

} // namespace

std::string WhyNotComposed(const Explanation& explanation)
{
    const Account& account = explanation.account;
    if (account.answer.outcome == Outcome::unknownUser) {
        return "the security manager does not know the user";
    }
    if (account.answer.outcome != Outcome::hideAll) {
        return {};
    }
    if (account.fields.empty()) {
        return "the security manager has no permission list for the user";
    }
    return "field '" + explanation.names.at(account.fields.size() - 1).field + "': " + WhyHidden(account.fields.back());
}

std::string WhyEmpty(const ConditionAccount& condition)
{
    if (!condition.text.empty()) {
        return {};
    }
    if (!condition.userIsTold) {
        return "the security manager tells nothing of the user";
    }
    if (!condition.attributes.empty() && !condition.attributes.back().value &&
        condition.definition->mandatoryFields.count("$" + condition.attributes.back().name + "$") != 0) {
        return "the user has no attribute '" + condition.attributes.back().name + "', which is mandatory";
    }
    return "its text came out empty";
}

bool RestrictsNothing(const FieldAccount& field)
{
    return !field.conditions.empty() && field.clause.empty();
}
