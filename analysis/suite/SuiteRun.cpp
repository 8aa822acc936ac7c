#include "analysis/suite/SuiteRun.h"

#include "analysis/check/Spelling.h"
#include "analysis/data/DataSource.h"
#include "analysis/data/RecordExplanation.h"
#include "analysis/trace/Tracer.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>

namespace secm::analysis {

namespace {

constexpr std::string_view placeOfValues = "%values%";

std::string InQuotes(const std::set<std::string>& values)
{
    std::string list;
    for (const std::string& value : values) {
        list.append(list.empty() ? "'" : ", '").append(value).append("'");
    }
    return list.empty() ? "no value" : list;
}

std::string ExpectedText(const ExpectedValues& expected)
{
    return expected.kind == ExpectedValues::Kind::all    ? "all"
           : expected.kind == ExpectedValues::Kind::none ? "none"
                                                         : InQuotes(expected.values);
}

std::string OrNoRestriction(const std::string& filter)
{
    return filter.empty() ? "(no restriction: every record is visible)" : filter;
}

const FieldTrace* FindField(const Trace& trace, const std::string& name)
{
    const auto found = std::find_if(trace.fields.begin(), trace.fields.end(),
                                    [&](const FieldTrace& field) { return field.rule->name == name; });
    return found == trace.fields.end() ? nullptr : &*found;
}

// A field without conditions that is not held leaves no value.
bool LeavesNoValue(const FieldTrace& field)
{
    return !field.isHeld && field.conditions.empty();
}

std::string FoundText(const FieldTrace* field)
{
    return field == nullptr        ? "not asked, because the answer was certain before"
           : field->isHeld         ? "all"
           : LeavesNoValue(*field) ? "none"
                                   : InQuotes(FilteredValues(*field));
}

// The clauses of the filter that hold, or do not hold, for a record.
std::string ClausesThat(bool hold, const RecordTrace& record)
{
    std::string text;
    for (const ClauseOnRecord& clause : record.clauses) {
        if (clause.holds == hold) {
            text += fmt::format("{}{}{}", text.empty() ? "" : "; ", clause.field.empty() ? "" : clause.field + ": ",
                                clause.clause);
        }
    }
    return text;
}

} // namespace

std::set<std::string> FilteredValues(const FieldTrace& field)
{
    std::set<std::string> values;
    for (const ConditionTrace& condition : field.conditions) {
        if (condition.text.empty()) {
            continue;
        }
        if (condition.rule->text.find(placeOfValues) != std::string::npos) {
            const std::vector<std::string> filled = condition.rule->isMapped ? condition.mapped : ValuesOf(field);
            values.insert(filled.begin(), filled.end());
        }
        for (const AttributeTrace& attribute : condition.attributes) {
            values.insert(attribute.value.value_or(""));
        }
    }
    return values;
}

// Checks the answer to one user.
class SuiteRun::UserCheck {
public:
    UserCheck(const SuiteTest& suiteTest, const Trace& userTrace, std::vector<Failure>& found)
        : test(suiteTest), trace(userTrace), failures(found)
    {
    }

    void CheckAnswer()
    {
        if (!test.outcome && trace.answer.outcome == Outcome::unknownUser) {
            Fail("user", "", "a user whom the security manager knows", "an unknown user",
                 OrNoRestriction(trace.answer.filter));
        }
        if (test.outcome && *test.outcome != trace.answer.outcome) {
            Fail("outcome", "", NameOf(*test.outcome), NameOf(trace.answer.outcome),
                 OrNoRestriction(trace.answer.filter));
        }
        for (const ExpectedValues& expected : test.values) {
            CheckValues(expected);
        }
        if (test.filter && *test.filter != trace.answer.filter) {
            Fail("filter", "", OrNoRestriction(*test.filter), OrNoRestriction(trace.answer.filter), "");
        }
    }

    void CheckByName(const Answer& byName)
    {
        if (byName.filter != trace.answer.filter || byName.outcome != trace.answer.outcome) {
            Fail("roads", "", fmt::format("by name as at a log-in: {}", OrNoRestriction(trace.answer.filter)),
                 OrNoRestriction(byName.filter), "");
        }
    }

    void CheckRows(DataSource& data)
    {
        const RowFilter filter = RowFilterOf(trace.answer);
        try {
            if (test.count) {
                if (const std::uint64_t count = data.Count(filter); count != *test.count) {
                    Fail("count", "", std::to_string(*test.count), std::to_string(count),
                         OrNoRestriction(trace.answer.filter));
                }
            }
            for (const std::string& key : test.sees) {
                CheckRow(data, filter, key, true);
            }
            for (const std::string& key : test.hides) {
                CheckRow(data, filter, key, false);
            }
        } catch (const FilterRefused& error) {
            Fail("rows", "", "a filter that the engine takes", error.what(), OrNoRestriction(trace.answer.filter));
        }
    }

private:
    void CheckValues(const ExpectedValues& expected)
    {
        const FieldTrace* field = FindField(trace, expected.field);
        const bool isHeld = field != nullptr && field->isHeld;
        const bool leavesNone = field != nullptr && LeavesNoValue(*field);
        const bool holds =
            expected.kind == ExpectedValues::Kind::all ? isHeld
            : expected.kind == ExpectedValues::Kind::none
                ? leavesNone
                : field != nullptr && !isHeld && !leavesNone && FilteredValues(*field) == expected.values;
        if (!holds) {
            Fail("values", expected.field, ExpectedText(expected), FoundText(field),
                 field == nullptr ? "" : field->clause);
        }
    }

    void CheckRow(DataSource& data, const RowFilter& filter, const std::string& key, bool isExpected)
    {
        if (data.Matches(filter, key) == isExpected) {
            if (isExpected || data.Matches(std::nullopt, key)) {
                return;
            }
        }
        const char* what = isExpected ? "sees" : "hides";
        const char* expected = isExpected ? "visible" : "not visible";
        if (!data.Matches(std::nullopt, key)) {
            Fail(what, key, expected, "there is no row with this key", "");
        } else {
            Fail(what, key, expected, isExpected ? "not visible" : "visible",
                 ClausesThat(!isExpected, ExplainRecord(trace, data, key)));
        }
    }

    void Fail(const char* what, const std::string& name, const std::string& expected, const std::string& found,
              const std::string& because)
    {
        failures.push_back({trace.request.userName, what, name, expected, found, because});
    }

    const SuiteTest& test;
    const Trace& trace;
    std::vector<Failure>& failures;
};

SuiteRun::SuiteRun(const Suite& suite, Tracer& tracer, DataSource* data) : asked(tracer), rows(data)
{
    std::vector<std::string> fields;
    for (const auto& field : tracer.Rules().fields) {
        fields.push_back(field->name);
    }
    for (const SuiteTest& test : suite.tests) {
        for (const ExpectedValues& expected : test.values) {
            if (std::find(fields.begin(), fields.end(), expected.field) == fields.end()) {
                throw SuiteError(expected.place,
                                 fmt::format("the repository '{}' has no field '{}'; {}", suite.repository,
                                             expected.field,
                                             DidYouMean(expected.field, fields,
                                                        fmt::format("its fields are {}", fmt::join(fields, ", ")))));
            }
        }
    }
}

TestResult SuiteRun::Run(const SuiteTest& test)
{
    const auto start = std::chrono::steady_clock::now();
    TestResult result;
    result.test = &test;
    for (const std::string& user : test.users) {
        const Trace& trace = result.traces.emplace_back(asked.Explain({user, test.address, false}));
        UserCheck check(test, trace, result.failures);
        check.CheckAnswer();
        check.CheckByName(asked.Explain({user, test.address, true}).answer);
        if (rows != nullptr && test.NeedsRows()) {
            check.CheckRows(*rows);
        }
    }
    result.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return result;
}

} // namespace secm::analysis
