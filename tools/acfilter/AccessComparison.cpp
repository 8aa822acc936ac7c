#include "tools/acfilter/AccessComparison.h"

#include "SECM_AccessControl/TemplateLanguage.h"
#include "tools/acfilter/Access.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

// More of the one and less of the other cannot be told.
Change Together(Change one, Change other)
{
    if (one == Change::same || one == other) {
        return other;
    }
    return other == Change::same ? one : Change::changed;
}

Change Reversed(Change change)
{
    return change == Change::wider ? Change::narrower : (change == Change::narrower ? Change::wider : change);
}

void Notice(FieldChange& field, Change change, const std::string& because)
{
    field.change = Together(field.change, change);
    if (!because.empty()) {
        field.because = because;
    }
}

const FieldAccount* Find(const std::string& name, const std::vector<std::string>& names, const Account& account)
{
    const auto found = std::find(names.begin(), names.end(), name);
    return found == names.end() ? nullptr : &account.fields.at(static_cast<std::size_t>(found - names.begin()));
}

bool Restricts(const FieldAccount* field)
{
    return field != nullptr && !field->clause.empty();
}

std::string WhyUnrestricted(const FieldAccount* field)
{
    return field == nullptr ? "no such field" : (field->isHeld ? "held outright" : "restricted nothing");
}

std::size_t TextCount(const FieldAccount& field)
{
    return static_cast<std::size_t>(std::count_if(field.conditions.begin(), field.conditions.end(),
                                                  [](const ConditionAccount& each) { return !each.text.empty(); }));
}

// The names of the fields that restrict on both sides, in the order of the first.
std::vector<std::string> RestrictingOnBoth(const std::vector<std::string>& names, const Account& account,
                                           const std::vector<std::string>& otherNames, const Account& other)
{
    std::vector<std::string> common;
    std::copy_if(names.begin(), names.end(), std::back_inserter(common), [&](const std::string& name) {
        return Restricts(Find(name, names, account)) && Restricts(Find(name, otherNames, other));
    });
    return common;
}

std::size_t ClauseCount(const Account& account)
{
    return static_cast<std::size_t>(std::count_if(account.fields.begin(), account.fields.end(),
                                                  [](const FieldAccount& each) { return Restricts(&each); }));
}

bool IsSameTemplate(const ConditionAccount& one, const ConditionAccount& other)
{
    return one.definition->conditionText == other.definition->conditionText &&
           one.definition->replaceFields == other.definition->replaceFields &&
           one.definition->mandatoryFields == other.definition->mandatoryFields;
}

// In order, each once.
std::vector<std::string> ValuesIn(const FieldAccount& field, const ConditionAccount& condition)
{
    std::vector<std::string> values = condition.definition->valuesFunction ? condition.mapped : ValuesOf(field);
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    return values;
}

// The template is then filled with attributes instead of values.
bool IsOwn(const std::vector<std::string>& values)
{
    return values == std::vector<std::string>{std::string(ownValue)};
}

std::vector<std::string> Without(const std::vector<std::string>& values, const std::vector<std::string>& others)
{
    std::vector<std::string> rest;
    std::set_difference(values.begin(), values.end(), others.begin(), others.end(), std::back_inserter(rest));
    return rest;
}

void AddOnce(std::vector<std::string>& values, const std::vector<std::string>& more)
{
    values.insert(values.end(), more.begin(), more.end());
    values = EachOnce(values);
}

} // namespace

const char* NameOf(Change change)
{
    switch (change) {
    case Change::wider:
        return "wider";
    case Change::changed:
        return "changed";
    case Change::narrower:
        return "narrower";
    default:
        return "same";
    }
}

AccessComparison::AccessComparison(FilterRules rulesBefore, FilterRules rulesAfter,
                                   std::set<std::string> excludingFields)
    : before(std::move(rulesBefore)), after(std::move(rulesAfter)), excluding(std::move(excludingFields))
{
}

UserChange AccessComparison::Compare(const Account& old, const Account& now) const
{
    UserChange user{now.request.userName, old.answer, now.answer, Change::same, {}, {}};
    const auto decide = [&user](Change change, const char* because) {
        user.change = change;
        user.because = because;
    };
    const Outcome was = old.answer.outcome;
    const Outcome is = now.answer.outcome;
    if (old.answer.filter == now.answer.filter) {
        return user; // whatever it means
    }
    // An empty filter lets everything through, whatever led to it.
    if (now.answer.filter.empty()) {
        decide(Change::wider, "every record is visible now");
    } else if (old.answer.filter.empty()) {
        decide(Change::narrower, "every record was visible before");
    } else if (was == Outcome::hideAll && is != Outcome::hideAll) {
        decide(Change::wider, "every record was hidden before");
    } else if (is == Outcome::hideAll && before.language.hideAllFilter != after.language.hideAllFilter) {
        decide(Change::changed, "hide_all_filter is another");
    } else if (is == Outcome::hideAll) {
        decide(Change::narrower, "every record is hidden now");
    } else if (was == Outcome::unknownUser && is == Outcome::unknownUser) {
        decide(Change::changed, "default_filter is another");
    } else if (was == Outcome::unknownUser) {
        decide(Change::changed, "the user was not known before");
    } else if (is == Outcome::unknownUser) {
        decide(Change::changed, "the user is not known now");
    } else {
        CompareFields(old, now, user);
    }
    return user;
}

void AccessComparison::CompareFields(const Account& old, const Account& now, UserChange& user) const
{
    std::vector<std::string> names = before.fields;
    AddOnce(names, after.fields);
    for (const std::string& name : names) {
        FieldChange field = CompareField(name, Find(name, before.fields, old), Find(name, after.fields, now));
        if (field.change != Change::same) {
            user.change = Together(user.change, field.change);
            user.fields.push_back(std::move(field));
        }
    }
    if (before.language.filterDelimiter != after.language.filterDelimiter &&
        std::max(ClauseCount(old), ClauseCount(now)) > 1) {
        user.change = Change::changed;
        user.because = "filter_delimiter is another";
    }
    // What is not in parentheses means something else beside others.
    if (RestrictingOnBoth(before.fields, old, after.fields, now) !=
        RestrictingOnBoth(after.fields, now, before.fields, old)) {
        user.change = Change::changed;
        user.because = "the fields stand in another order";
    }
}

std::vector<SettingChange> AccessComparison::CompareSettings() const
{
    std::vector<SettingChange> changes;
    const auto compare = [&](const char* setting, const char* users, const std::string& was, const std::string& is) {
        if (was != is) {
            const Change change = is.empty() ? Change::wider : was.empty() ? Change::narrower : Change::changed;
            changes.push_back({setting, users, change, was, is});
        }
    };
    compare("default_filter", "users who are not known", before.language.defaultFilter, after.language.defaultFilter);
    compare("hide_all_filter", "users from whom every record is to be hidden", before.language.hideAllFilter,
            after.language.hideAllFilter);
    return changes;
}

FieldChange AccessComparison::CompareField(const std::string& name, const FieldAccount* old,
                                           const FieldAccount* now) const
{
    FieldChange field;
    field.field = name;
    if (Restricts(old) && Restricts(now)) {
        CompareClauses(*old, *now, field);
    } else if (Restricts(old)) {
        Notice(field, Change::wider, WhyUnrestricted(now) + " now");
    } else if (Restricts(now)) {
        Notice(field, Change::narrower, WhyUnrestricted(old) + " before");
    }
    return field;
}

void AccessComparison::CompareClauses(const FieldAccount& old, const FieldAccount& now, FieldChange& field) const
{
    if (old.clause == now.clause) {
        return;
    }
    const std::string why = WhyWrittenOtherwise(old, now);
    if (!why.empty()) {
        return Notice(field, Change::changed, why);
    }
    for (std::size_t index = 0; index < old.conditions.size(); ++index) {
        CompareConditions(old, now, index, field);
    }
}

void AccessComparison::CompareConditions(const FieldAccount& old, const FieldAccount& now, std::size_t index,
                                         FieldChange& field) const
{
    const ConditionAccount& was = old.conditions[index];
    const ConditionAccount& is = now.conditions[index];
    const std::string name = "condition" + std::to_string(index + 1);
    if (was.text == is.text) {
        return;
    }
    if (was.text.empty() || is.text.empty()) {
        return Notice(field, Change::changed, name + " came out empty " + (is.text.empty() ? "now" : "before"));
    }
    const std::vector<std::string> valuesBefore = ValuesIn(old, was);
    const std::vector<std::string> valuesNow = ValuesIn(now, is);
    if (IsOwn(valuesBefore) || IsOwn(valuesNow)) {
        return Notice(field, Change::changed, name + " is filled with other attributes of the user");
    }
    if (was.definition->conditionText.find(valuesPlaceholder) == std::string::npos) {
        return Notice(field, Change::changed, name + " does not say which values it is for");
    }
    const std::vector<std::string> added = Without(valuesNow, valuesBefore);
    const std::vector<std::string> removed = Without(valuesBefore, valuesNow);
    AddOnce(field.added, added);
    AddOnce(field.removed, removed);
    const Change more = excluding.count(field.field) != 0 ? Change::narrower : Change::wider;
    Notice(field, added.empty() ? Change::same : more, "");
    Notice(field, removed.empty() ? Change::same : Reversed(more), "");
}

// Where a difference of values would not be the only one.
std::string AccessComparison::WhyWrittenOtherwise(const FieldAccount& old, const FieldAccount& now) const
{
    if (!std::equal(old.conditions.begin(), old.conditions.end(), now.conditions.begin(), now.conditions.end(),
                    IsSameTemplate)) {
        return "its templates or their tokens are others";
    }
    if (std::max(TextCount(old), TextCount(now)) > 1 &&
        old.definition->conditionsDelimiter != now.definition->conditionsDelimiter) {
        return "conditions_delimiter is another";
    }
    const std::size_t countBefore = ValuesOf(old).size();
    const std::size_t countNow = ValuesOf(now).size();
    const bool usesSingle = countBefore == 1 || countNow == 1;
    const bool usesSeveral = countBefore > 1 || countNow > 1;
    if ((usesSingle && before.language.singleEqualOperator != after.language.singleEqualOperator) ||
        (usesSeveral && before.language.ofSeveralValues != after.language.ofSeveralValues)) {
        return "the operators, or what is put around and between values, are others";
    }
    return {};
}
