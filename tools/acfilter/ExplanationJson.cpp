// An explanation as programs read it. The keys are documented and stay.
#include "tools/acfilter/Explanation.h"

#include "tools/acfilter/Json.h"

namespace {

Json JsonOf(const AttributeAccount& attribute)
{
    return {{"attribute", attribute.name}, {"value", attribute.value ? Json(*attribute.value) : Json(nullptr)}};
}

Json JsonOf(const WhatIf& tried)
{
    Json changes = Json::array();
    for (const auto& [name, value] : tried.attributes) {
        changes.push_back({{"attribute", name}, {"value", value}});
    }
    for (const auto& revocation : tried.revocations) {
        changes.push_back({{"revoke", revocation.permission}, {"revoked", revocation.revoked}});
    }
    for (const PermissionBase& grant : tried.grants) {
        changes.push_back({{"grant", grant.name()},
                           {"value", grant.value()},
                           {"resource", grant.resource() != nullptr ? Json(grant.resource()) : Json(nullptr)}});
    }
    return changes;
}

Json JsonOf(const ConditionAccount& condition, const FunctionName& function)
{
    Json attributes = Json::array();
    for (const AttributeAccount& attribute : condition.attributes) {
        attributes.push_back(JsonOf(attribute));
    }
    return {{"template", condition.definition->conditionText},
            {"valuesFunction", TextOrNull(function.name)},
            {"valuesFunctionConfigString", TextOrNull(function.configuration)},
            {"mapped", condition.definition->valuesFunction ? Json(condition.mapped) : Json(nullptr)},
            {"tokens", std::move(attributes)},
            {"text", condition.text},
            {"emptyBecause", TextOrNull(WhyEmpty(condition))}};
}

Json JsonOf(const FieldAccount& field, const DefinitionNames& names)
{
    Json values = Json::array();
    for (const ValueAccount& way : field.values) {
        values.push_back({{"resource", way.resource},
                          {"value", way.value.empty() ? Json(nullptr) : Json(way.value)},
                          {"standsFor", way.attribute ? JsonOf(*way.attribute) : Json(nullptr)}});
    }
    Json conditions = Json::array();
    for (std::size_t index = 0; index < field.conditions.size(); ++index) {
        conditions.push_back(JsonOf(field.conditions[index], names.functions.at(index)));
    }
    return {{"field", names.field},
            {"permission", field.definition->permissionName},
            {"permissionValue", field.definition->permissionValue},
            {"heldOutright", field.isHeld},
            {"resourcesTold", field.resourcesAreTold},
            {"values", std::move(values)},
            {"conditions", std::move(conditions)},
            {"clause", field.clause},
            {"restrictsNothing", RestrictsNothing(field)}};
}

} // namespace

std::string ExplanationJson(const Explanation& explanation)
{
    const Account& account = explanation.account;
    Json fields = Json::array();
    for (std::size_t index = 0; index < account.fields.size(); ++index) {
        fields.push_back(JsonOf(account.fields[index], explanation.names.at(index)));
    }
    const Json object = {{"user", account.request.userName},
                         {"repository", explanation.repository},
                         {"login", !account.request.withoutLogin},
                         {"ip", account.request.ipAddress},
                         {"whatIf", JsonOf(explanation.tried)},
                         {"outcome", NameOf(account.answer.outcome)},
                         {"because", TextOrNull(WhyNotComposed(explanation))},
                         {"group", account.groupName ? Json(*account.groupName) : Json(nullptr)},
                         {"fields", std::move(fields)},
                         {"filter", account.answer.filter},
                         {"note", account.answer.filter.empty() ? Json(noRestriction) : Json(nullptr)}};
    return JsonLine(object);
}
