#include "analysis/compare/TraceComparison.h"

#include "SECM_AccessControl/TemplateLanguage.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

namespace secm::analysis {

namespace {

// Wider in one part and narrower in another is only "changed".
Change Combined(Change one, Change other)
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

void AddTo(FieldChange& field, Change change, const std::string& because)
{
    field.change = Combined(field.change, change);
    if (!because.empty()) {
        field.because = because;
    }
}

const FieldTrace* Find(const std::string& name, const Trace& trace)
{
    const auto found = std::find_if(trace.fields.begin(), trace.fields.end(),
                                    [&](const FieldTrace& field) { return field.rule->name == name; });
    return found != trace.fields.end() ? &*found : nullptr;
}

std::vector<std::string> NamesOf(const Trace& trace)
{
    std::vector<std::string> names;
    for (const FieldTrace& field : trace.fields) {
        names.push_back(field.rule->name);
    }
    return names;
}

bool Restricts(const FieldTrace* field)
{
    return field != nullptr && !field->clause.empty();
}

std::string WhyUnrestricted(const FieldTrace* field)
{
    return field == nullptr ? "no such field" : (field->isHeld ? "held outright" : "restricted nothing");
}

std::size_t TextCount(const FieldTrace& field)
{
    return static_cast<std::size_t>(std::count_if(field.conditions.begin(), field.conditions.end(),
                                                  [](const ConditionTrace& each) { return !each.text.empty(); }));
}

// The names of the fields that restrict on both sides, in the order of the first.
std::vector<std::string> RestrictingInBoth(const Trace& trace, const Trace& other)
{
    std::vector<std::string> common;
    for (const FieldTrace& field : trace.fields) {
        if (Restricts(&field) && Restricts(Find(field.rule->name, other))) {
            common.push_back(field.rule->name);
        }
    }
    return common;
}

std::size_t ClauseCount(const Trace& trace)
{
    return static_cast<std::size_t>(std::count_if(trace.fields.begin(), trace.fields.end(),
                                                  [](const FieldTrace& each) { return Restricts(&each); }));
}

bool IsSameTemplate(const ConditionTrace& one, const ConditionTrace& other)
{
    return one.rule->text == other.rule->text && one.rule->replaceTokens == other.rule->replaceTokens &&
           one.rule->mandatoryTokens == other.rule->mandatoryTokens;
}

// What is written around and between several values.
auto ListSettingsOf(const FilterSettings& settings)
{
    return std::tie(settings.multipleEqualOperator, settings.valueMultiplicityDelimiter,
                    settings.valueMultiplicityPrefix, settings.valueMultiplicitySuffix);
}

// Sorted, each once.
std::vector<std::string> ValuesIn(const FieldTrace& field, const ConditionTrace& condition)
{
    std::vector<std::string> values = condition.rule->isMapped ? condition.mapped : ValuesOf(field);
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    return values;
}

// The template is then filled with attributes instead of values.
bool IsOwnValue(const std::vector<std::string>& values)
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

TraceComparison::TraceComparison(FilterSettings settingsBefore, FilterSettings settingsAfter,
                                 std::set<std::string> excludingFields)
    : before(std::move(settingsBefore)), after(std::move(settingsAfter)), excluding(std::move(excludingFields))
{
}

UserChange TraceComparison::Compare(const Trace& old, const Trace& now) const
{
    UserChange user{now.request.userName, old.answer, now.answer, Change::same, {}, {}, {}};
    const auto decide = [&user](Change change, const char* because) {
        user.change = change;
        user.because = because;
    };
    const Outcome was = old.answer.outcome;
    const Outcome is = now.answer.outcome;
    if (old.answer.filter == now.answer.filter) {
        return user; // whatever the outcomes are
    }
    // An empty filter lets everything through, whatever led to it.
    if (now.answer.filter.empty()) {
        decide(Change::wider, "every record is visible now");
    } else if (old.answer.filter.empty()) {
        decide(Change::narrower, "every record was visible before");
    } else if (was == Outcome::hideAll && is != Outcome::hideAll) {
        decide(Change::wider, "every record was hidden before");
    } else if (is == Outcome::hideAll && before.hideAllFilter != after.hideAllFilter) {
        decide(Change::changed, "hide_all_filter differs");
    } else if (is == Outcome::hideAll) {
        decide(Change::narrower, "every record is hidden now");
    } else if (was == Outcome::unknownUser && is == Outcome::unknownUser) {
        decide(Change::changed, "default_filter differs");
    } else if (was == Outcome::unknownUser) {
        decide(Change::changed, "the user was not known before");
    } else if (is == Outcome::unknownUser) {
        decide(Change::changed, "the user is not known now");
    } else {
        CompareFields(old, now, user);
    }
    return user;
}

void TraceComparison::CompareFields(const Trace& old, const Trace& now, UserChange& user) const
{
    std::vector<std::string> names = NamesOf(old);
    AddOnce(names, NamesOf(now));
    for (const std::string& name : names) {
        FieldChange field = CompareField(name, Find(name, old), Find(name, now));
        if (field.change != Change::same) {
            user.change = Combined(user.change, field.change);
            user.fields.push_back(std::move(field));
        }
    }
    if (before.filterDelimiter != after.filterDelimiter && std::max(ClauseCount(old), ClauseCount(now)) > 1) {
        user.change = Change::changed;
        user.because = "filter_delimiter differs";
    }
    // A clause without parentheses can mean something else in another place.
    if (RestrictingInBoth(old, now) != RestrictingInBoth(now, old)) {
        user.change = Change::changed;
        user.because = "the fields stand in another order";
    }
}

std::vector<SettingChange> TraceComparison::CompareSettings() const
{
    std::vector<SettingChange> changes;
    const auto compare = [&](const char* setting, const char* users, const std::string& was, const std::string& is) {
        if (was != is) {
            const Change change = is.empty() ? Change::wider : was.empty() ? Change::narrower : Change::changed;
            changes.push_back({setting, users, change, was, is});
        }
    };
    compare("default_filter", "users who are not known", before.defaultFilter, after.defaultFilter);
    compare("hide_all_filter", "users from whom every record is to be hidden", before.hideAllFilter,
            after.hideAllFilter);
    return changes;
}

FieldChange TraceComparison::CompareField(const std::string& name, const FieldTrace* old, const FieldTrace* now) const
{
    FieldChange field;
    field.field = name;
    if (Restricts(old) && Restricts(now)) {
        CompareClauses(*old, *now, field);
    } else if (Restricts(old)) {
        AddTo(field, Change::wider, WhyUnrestricted(now) + " now");
    } else if (Restricts(now)) {
        AddTo(field, Change::narrower, WhyUnrestricted(old) + " before");
    }
    return field;
}

void TraceComparison::CompareClauses(const FieldTrace& old, const FieldTrace& now, FieldChange& field) const
{
    if (old.clause == now.clause) {
        return;
    }
    const std::string why = WhyWrittenOtherwise(old, now);
    if (!why.empty()) {
        return AddTo(field, Change::changed, why);
    }
    for (std::size_t index = 0; index < old.conditions.size(); ++index) {
        CompareConditions(old, now, index, field);
    }
}

void TraceComparison::CompareConditions(const FieldTrace& old, const FieldTrace& now, std::size_t index,
                                        FieldChange& field) const
{
    const ConditionTrace& was = old.conditions[index];
    const ConditionTrace& is = now.conditions[index];
    const std::string name = "condition" + std::to_string(index + 1);
    if (was.text == is.text) {
        return;
    }
    if (was.text.empty() || is.text.empty()) {
        return AddTo(field, Change::changed, name + (is.text.empty() ? " adds nothing now" : " added nothing before"));
    }
    const std::vector<std::string> valuesBefore = ValuesIn(old, was);
    const std::vector<std::string> valuesNow = ValuesIn(now, is);
    if (IsOwnValue(valuesBefore) || IsOwnValue(valuesNow)) {
        return AddTo(field, Change::changed, name + " is filled with other attributes of the user");
    }
    if (was.rule->text.find(valuesPlaceholder) == std::string::npos) {
        return AddTo(field, Change::changed, name + " does not say which values it is for");
    }
    const std::vector<std::string> added = Without(valuesNow, valuesBefore);
    const std::vector<std::string> removed = Without(valuesBefore, valuesNow);
    AddOnce(field.added, added);
    AddOnce(field.removed, removed);
    const Change more = excluding.count(field.field) != 0 ? Change::narrower : Change::wider;
    AddTo(field, added.empty() ? Change::same : more, "");
    AddTo(field, removed.empty() ? Change::same : Reversed(more), "");
}

// Why the clauses would differ even with the same values; empty: only the values make a difference.
std::string TraceComparison::WhyWrittenOtherwise(const FieldTrace& old, const FieldTrace& now) const
{
    if (!std::equal(old.conditions.begin(), old.conditions.end(), now.conditions.begin(), now.conditions.end(),
                    IsSameTemplate)) {
        return "its templates or their tokens differ";
    }
    if (std::max(TextCount(old), TextCount(now)) > 1 &&
        old.rule->conditionsDelimiter != now.rule->conditionsDelimiter) {
        return "conditions_delimiter differs";
    }
    const std::size_t countBefore = ValuesOf(old).size();
    const std::size_t countNow = ValuesOf(now).size();
    const bool usesSingle = countBefore == 1 || countNow == 1;
    const bool usesSeveral = countBefore > 1 || countNow > 1;
    if ((usesSingle && before.singleEqualOperator != after.singleEqualOperator) ||
        (usesSeveral && ListSettingsOf(before) != ListSettingsOf(after))) {
        return "the operators, or the texts around and between values, differ";
    }
    return {};
}

} // namespace secm::analysis
