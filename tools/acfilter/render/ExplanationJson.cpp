// An explanation as programs read it. The keys are documented and stay.
#include "tools/acfilter/render/Explanation.h"

#include "analysis/trace/Reasons.h"
#include "tools/acfilter/render/Json.h"
#include "tools/acfilter/render/TextLayout.h"

namespace secm::acfilter {

namespace {

Json JsonOf(const analysis::AttributeTrace& attribute)
{
    return {{"attribute", attribute.name}, {"value", attribute.value ? Json(*attribute.value) : Json(nullptr)}};
}

Json JsonOf(const analysis::WhatIf& tried)
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

Json JsonOf(const analysis::ConditionTrace& condition)
{
    Json attributes = Json::array();
    for (const analysis::AttributeTrace& attribute : condition.attributes) {
        attributes.push_back(JsonOf(attribute));
    }
    return {{"template", condition.rule->text},
            {"valuesFunction", TextOrNull(condition.rule->function)},
            {"valuesFunctionConfigString", TextOrNull(condition.rule->functionConfiguration)},
            {"mapped", condition.rule->isMapped ? Json(condition.mapped) : Json(nullptr)},
            {"tokens", std::move(attributes)},
            {"text", condition.text},
            {"emptyBecause", TextOrNull(analysis::WhyEmpty(condition))}};
}

Json JsonOf(const analysis::FieldTrace& field)
{
    Json values = Json::array();
    for (const analysis::ValueTrace& value : field.values) {
        values.push_back({{"resource", value.resource},
                          {"value", value.value.empty() ? Json(nullptr) : Json(value.value)},
                          {"standsFor", value.attribute ? JsonOf(*value.attribute) : Json(nullptr)}});
    }
    Json conditions = Json::array();
    for (const analysis::ConditionTrace& condition : field.conditions) {
        conditions.push_back(JsonOf(condition));
    }
    return {{"field", field.rule->name},
            {"permission", field.rule->permissionName},
            {"permissionValue", field.rule->permissionValue},
            {"heldOutright", field.isHeld},
            {"resourcesTold", field.resourcesAreTold},
            {"values", std::move(values)},
            {"conditions", std::move(conditions)},
            {"clause", field.clause},
            {"restrictsNothing", analysis::RestrictsNothing(field)}};
}

} // namespace

std::string ExplanationJson(const analysis::Trace& trace)
{
    Json fields = Json::array();
    for (const analysis::FieldTrace& field : trace.fields) {
        fields.push_back(JsonOf(field));
    }
    const Json object = {{"user", trace.request.userName},
                         {"repository", trace.repository},
                         {"login", !trace.request.withoutLogin},
                         {"ip", trace.request.ipAddress},
                         {"whatIf", JsonOf(trace.tried)},
                         {"outcome", NameOf(trace.answer.outcome)},
                         {"because", TextOrNull(analysis::WhyNotComposed(trace))},
                         {"group", trace.groupName ? Json(*trace.groupName) : Json(nullptr)},
                         {"fields", std::move(fields)},
                         {"filter", trace.answer.filter},
                         {"note", trace.answer.filter.empty() ? Json(noRestriction) : Json(nullptr)}};
    return JsonLine(object);
}

std::string AnswerJson(const std::string& userName, const analysis::Answer& answer)
{
    return JsonLine({{"user", userName}, {"filter", answer.filter}, {"outcome", NameOf(answer.outcome)}});
}

} // namespace secm::acfilter
