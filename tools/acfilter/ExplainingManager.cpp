#include "tools/acfilter/ExplainingManager.h"

#include "platform/security_manager/UserDetailsInterface.h"

#include <stdexcept>
#include <utility>

Account ExplainingManager::Explain(const Request& request)
{
    account = {};
    account.request = request;
    account.answer = Ask(request);
    std::string joined;
    for (FieldAccount& field : account.fields) {
        field.clause = ClauseOf(field);
        if (!field.clause.empty()) {
            joined += (joined.empty() ? "" : filterDelimiter) + field.clause;
        }
    }
    const bool isComposed =
        account.answer.outcome == Outcome::restricted || account.answer.outcome == Outcome::unrestricted;
    if (isComposed && joined != account.answer.filter) {
        throw std::logic_error(
            "what was watched does not make up the filter; please report this as a fault of acfilter");
    }
    return std::move(account);
}

// The manager joins the texts where nobody can watch.
std::string ExplainingManager::ClauseOf(const FieldAccount& field) const
{
    std::string clause;
    int count = 0;
    for (const ConditionAccount& condition : field.conditions) {
        if (!condition.text.empty()) {
            clause += (count++ == 0 ? "" : field.definition->conditionsDelimiter) + condition.text;
        }
    }
    return count > 1 ? "(" + clause + ")" : clause;
}

void ExplainingManager::NoticeUser(UserDetailsInterface* user)
{
    WatchingManager::NoticeUser(user);
    if (user != nullptr) {
        user->GetGroupName(account.groupName.emplace());
    }
}

void ExplainingManager::NoticeField(bool isHeld)
{
    WatchingManager::NoticeField(isHeld);
    account.fields.push_back({fieldDefinitions.at(account.fields.size()).get(), isHeld, true, {}, {}, {}});
}

void ExplainingManager::NoticeResources(bool areTold, const std::vector<std::string>& resources)
{
    WatchingManager::NoticeResources(areTold, resources);
    account.fields.back().resourcesAreTold = areTold;
    account.fields.back().values.reserve(resources.size());
}

void ExplainingManager::NoticeAttribute(const char* name, const char* value)
{
    asked.push_back({name, value != nullptr ? std::optional<std::string>(value) : std::nullopt});
}

void ExplainingManager::ReplaceSingleValueForUser(std::string& value, const FieldDefinition& field,
                                                  UserDetailsInterface* userDetails)
{
    ValueAccount& way = account.fields.back().values.emplace_back();
    way.resource = value;
    asked.clear();
    WatchingManager::ReplaceSingleValueForUser(value, field, userDetails);
    way.value = value;
    if (!asked.empty()) {
        way.attribute = std::move(asked.back());
    }
}

void ExplainingManager::ReplaceSingleValue(std::string& value, const FieldDefinition& field,
                                           SecurityManagerInterface* secmInterface)
{
    std::vector<ValueAccount>& values = account.fields.back().values;
    const std::size_t before = values.size();
    WatchingManager::ReplaceSingleValue(value, field, secmInterface);
    if (values.size() == before) { // nothing was told of the user
        values.push_back({value, value, std::nullopt});
    }
}

std::string ExplainingManager::HandleSingleConditionForUser(const ConditionDefinition& condition,
                                                            const std::vector<std::string>& values,
                                                            UserDetailsInterface* userDetails)
{
    std::vector<ConditionAccount>& conditions = account.fields.back().conditions;
    conditions.push_back({&condition, {}, {}, {}, true});
    asked.clear();
    std::string text = WatchingManager::HandleSingleConditionForUser(condition, values, userDetails);
    conditions.back().attributes = std::move(asked);
    conditions.back().text = text;
    return text;
}

std::string ExplainingManager::HandleSingleCondition(const ConditionDefinition& condition,
                                                     const std::vector<std::string>& values,
                                                     SecurityManagerInterface* secmInterface)
{
    std::vector<ConditionAccount>& conditions = account.fields.back().conditions;
    const std::size_t before = conditions.size();
    std::string text = WatchingManager::HandleSingleCondition(condition, values, secmInterface);
    if (conditions.size() == before) {
        conditions.push_back({&condition, {}, {}, text, false});
    }
    return text;
}

std::string ExplainingManager::ApplyValuesFunction(const std::string& value, const ConditionDefinition& condition)
{
    std::string mapped = WatchingManager::ApplyValuesFunction(value, condition);
    if (condition.valuesFunction) {
        account.fields.back().conditions.back().mapped.push_back(mapped);
    }
    return mapped;
}
