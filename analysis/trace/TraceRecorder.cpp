#include "analysis/trace/TraceRecorder.h"

#include "platform/security_manager/PermissionBase.h"
#include "platform/security_manager/UserDetailsInterface.h"

#include <stdexcept>
#include <utility>

namespace secm::analysis {
namespace {

// The manager joins the texts of a field's conditions in a private function, so the join is repeated here.
std::string ClauseOf(const FieldTrace& field)
{
    std::string clause;
    int count = 0;
    for (const ConditionTrace& condition : field.conditions) {
        if (!condition.text.empty()) {
            clause += (count++ == 0 ? "" : field.rule->conditionsDelimiter) + condition.text;
        }
    }
    return count > 1 ? "(" + clause + ")" : clause;
}

} // namespace

void TraceRecorder::Begin(const Request& request, std::size_t firstField)
{
    first = firstField;
    trace = {};
    trace.repository = rules.repository;
    trace.request = request;
    attributes.clear();
    isKnown = false;
    lacksPermissions = false;
}

Trace TraceRecorder::Finish(std::string filter, const WhatIf& tried)
{
    trace.answer.outcome = OutcomeOf(filter);
    trace.answer.filter = std::move(filter);
    trace.tried = tried;
    for (FieldTrace& field : trace.fields) {
        field.clause = ClauseOf(field);
    }
    if (trace.answer.outcome == Outcome::hideAll) {
        const auto next = rules.fields.begin() + static_cast<std::ptrdiff_t>(first + trace.fields.size());
        trace.notAsked.assign(next, rules.fields.end());
    }
    return std::exchange(trace, {});
}

// The module fills no condition of a field that hides every record.
Outcome TraceRecorder::OutcomeOf(const std::string& filter) const
{
    if (!isKnown) {
        return Outcome::unknownUser;
    }
    const bool fieldHides =
        !trace.fields.empty() && !trace.fields.back().isHeld && trace.fields.back().conditions.empty();
    if (lacksPermissions || fieldHides) {
        return Outcome::hideAll;
    }
    return filter.empty() ? Outcome::unrestricted : Outcome::restricted;
}

void TraceRecorder::AddUser(UserDetailsInterface* user)
{
    isKnown = true;
    if (user != nullptr) {
        user->GetGroupName(trace.groupName.emplace());
    }
}

// The module checks the permissions of its fields in their order, each once.
void TraceRecorder::AddPermission(const PermissionBase& permission, bool isHeld)
{
    const std::shared_ptr<const FieldRule>& rule = rules.fields.at(first + trace.fields.size());
    if (permission.name() != rule->permissionName || permission.value() != rule->permissionValue) {
        throw std::logic_error("the module checks the permission '" + std::string(permission.name()) +
                               "' where that of the field '" + rule->name + "' comes next");
    }
    FieldTrace& field = trace.fields.emplace_back();
    field.rule = rule;
    field.isHeld = isHeld;
}

void TraceRecorder::AddResources(const std::vector<std::string>& resources, bool areTold)
{
    trace.fields.back().resourcesAreTold = areTold;
    trace.fields.back().values.reserve(resources.size());
}

void TraceRecorder::AddAttribute(const char* name, const char* value)
{
    attributes.push_back({name, value != nullptr ? std::optional<std::string>(value) : std::nullopt});
}

void TraceRecorder::AddValue(std::string resource, const std::string& value)
{
    ValueTrace& added = trace.fields.back().values.emplace_back();
    added.resource = std::move(resource);
    added.value = value;
    if (!attributes.empty()) {
        added.attribute = std::move(attributes.back());
        attributes.clear();
    }
}

ConditionTrace& TraceRecorder::AddCondition(const ConditionRule& rule)
{
    ConditionTrace& condition = trace.fields.back().conditions.emplace_back();
    condition.rule = &rule;
    return condition;
}

std::vector<AttributeTrace> TraceRecorder::TakeAttributes()
{
    return std::exchange(attributes, {});
}

} // namespace secm::analysis
