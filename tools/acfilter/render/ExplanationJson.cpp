// An explanation as programs read it. The keys are documented and stay.
#include "tools/acfilter/render/Explanation.h"

#include "analysis/trace/Reasons.h"
#include "tools/acfilter/render/Changes.h"
#include "tools/acfilter/render/Json.h"
#include "tools/acfilter/render/TextLayout.h"

namespace secm::acfilter {

namespace {

Json JsonOf(const analysis::AttributeTrace& attribute)
{
    return {{"attribute", attribute.name}, {"value", attribute.value ? Json(*attribute.value) : Json(nullptr)}};
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

Json JsonOf(const analysis::FieldGrants& grants)
{
    Json rows = Json::array();
    for (const SECM_Grant& grant : grants.grants) {
        const char* resource = grant.permission.resource();
        rows.push_back({{"position", grant.position},
                        {"to", grant.isToGroup ? "group" : "user"},
                        {"grantee", grant.grantee},
                        {"value", grant.permission.value()},
                        {"resource", resource != nullptr ? Json(resource) : Json(nullptr)}});
    }
    return rows;
}

// `grants` is null when the security manager lists no grants.
Json JsonOf(const analysis::FieldTrace& field, const analysis::FieldGrants* grants)
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
            {"restrictsNothing", analysis::RestrictsNothing(field)},
            {"grants", grants != nullptr ? JsonOf(*grants) : Json(nullptr)},
            {"nearMisses", grants != nullptr ? Json(grants->nearMisses) : Json(nullptr)}};
}

// `first` is the index in the grants of the first of `traced`.
Json JsonOf(const std::vector<analysis::FieldTrace>& traced, const std::vector<analysis::FieldGrants>& grants,
            std::size_t first)
{
    Json fields = Json::array();
    for (std::size_t index = 0; index < traced.size(); ++index) {
        fields.push_back(JsonOf(traced[index], grants.empty() ? nullptr : &grants.at(first + index)));
    }
    return fields;
}

} // namespace

std::string ExplanationJson(const Explanation& explanation)
{
    const analysis::Trace& trace = explanation.trace;
    Json object = {{"user", trace.request.userName},
                   {"repository", trace.repository},
                   {"login", !trace.request.withoutLogin},
                   {"ip", trace.request.ipAddress},
                   {"whatIf", ChangesJson(trace.tried, true)},
                   {"outcome", NameOf(trace.answer.outcome)},
                   {"because", TextOrNull(analysis::WhyNotComposed(trace))},
                   {"group", trace.groupName ? Json(*trace.groupName) : Json(nullptr)},
                   {"fields", JsonOf(trace.fields, explanation.grants, 0)},
                   {"laterFields", JsonOf(trace.later, explanation.grants, trace.fields.size())},
                   {"filter", trace.answer.filter},
                   {"note", trace.answer.filter.empty() ? Json(noRestriction) : Json(nullptr)},
                   {"notes", explanation.notes}};
    if (explanation.rows) {
        object["rows"] = RowsJson(*explanation.rows);
    }
    if (explanation.record) {
        object["record"] = RecordJson(*explanation.record);
    }
    return JsonLine(object);
}

std::string AnswerJson(const std::string& userName, const analysis::Answer& answer)
{
    return JsonLine({{"user", userName}, {"filter", answer.filter}, {"outcome", NameOf(answer.outcome)}});
}

} // namespace secm::acfilter
