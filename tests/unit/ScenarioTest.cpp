// Plays the scenarios of tests/cases/scenarios.txt and compares answers, messages and the order of calls.
#include "tests/unit/ScenarioFaults.h"

#include <algorithm>
#include <initializer_list>
#include <optional>

using namespace secm::testing;

namespace {

std::vector<Lines> Scenarios()
{
    std::vector<Lines> scenarios;
    for (const std::string& line : CaseLines("scenarios.txt")) {
        if (line.starts_with("scenario ")) {
            scenarios.push_back({line.substr(9)});
        } else {
            scenarios.back().push_back(line);
        }
    }
    return scenarios;
}

// One line of a scenario, and what is expected of it.
struct Step {
    std::string line;
    char recorded = ' '; ///< '>': every call and step. '!': messages, log-ins, log-outs and releases. ' ': any.
    std::string record;  ///< One entry a line.
    std::optional<std::string> answer;
};

std::vector<Step> StepsOf(const Lines& scenario)
{
    std::vector<Step> steps;
    for (auto line = scenario.begin() + 1; line != scenario.end(); ++line) {
        const std::string text = line->substr(std::min<std::size_t>(2, line->size()));
        if (line->front() == '=') {
            steps.back().answer = Unescaped(text);
        } else if (line->front() == '>' || line->front() == '!') {
            steps.back().recorded = line->front();
            if (!text.empty()) {
                steps.back().record += text + "\n";
            }
        } else {
            steps.push_back({*line, ' ', "", {}});
        }
    }
    return steps;
}

std::string OneEntryALine(const Lines& record)
{
    std::string text;
    for (const std::string& entry : record) {
        text += entry + "\n";
    }
    return text;
}

std::string JoinedClauses(const secm::analysis::Trace& trace, const std::string& delimiter)
{
    std::string joined;
    for (const auto& field : trace.fields) {
        joined += (joined.empty() || field.clause.empty() ? "" : delimiter) + field.clause;
    }
    return joined;
}

bool IsOneOf(const std::string& line, std::initializer_list<const char*> commands)
{
    return std::any_of(commands.begin(), commands.end(),
                       [&](const char* command) { return line.starts_with(command); });
}

class ScenarioTest : public testing::TestWithParam<Lines> {};

TEST_P(ScenarioTest, Plays)
{
    ScenarioPlayer player;
    for (const Step& step : StepsOf(GetParam())) {
        OutsideCalls& calls = outside.calls;
        calls.record.clear();
        calls.count = 0;
        calls.recordsQuestions = step.recorded == '>';
        player.Do(step.line);
        if (step.recorded != ' ') {
            EXPECT_EQ(OneEntryALine(calls.record), step.record) << step.line;
        }
        if (step.answer) {
            EXPECT_EQ(player.answer, *step.answer) << step.line;
        }
        if (IsOneOf(step.line, {"create", "connect", "login", "byname", "given", "ask"})) {
            ExpectFaultsToArrive(player, step.line);
            ExpectNoWrongAnswerWithoutMemory(player, step.line);
        }
        if (IsOneOf(step.line, {"login ", "byname "}) && player.manager->securityManager != nullptr &&
            player.manager->adminInterface != nullptr) {
            const std::string user = step.line.substr(step.line.find(' ') + 1);
            const auto trace =
                player.traced.Traced(player.manager->repositoryName, user, step.line.starts_with("byname"));
            EXPECT_EQ(trace.answer.filter, player.answer) << step.line;
            if (trace.answer.outcome == secm::analysis::Outcome::restricted) {
                EXPECT_EQ(JoinedClauses(trace, player.manager->filterDelimiter), player.answer) << step.line;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Text, ScenarioTest, testing::ValuesIn(Scenarios()), CaseName);

class ConditionTest : public testing::TestWithParam<Lines> {};

TEST_P(ConditionTest, IsFilled)
{
    ScenarioPlayer player;
    for (const std::string& line : CaseLines("conditions_setting.txt")) {
        player.Do(line);
    }
    const Lines& row = GetParam();
    const std::string field = "config @fields\\f\\docs\\";
    for (const std::string& line : {field + "condition1=" + row.at(1), field + "replace_fields1=" + row.at(2),
                                    field + "mandatory_fields1=" + row.at(3), field + "values_function1=" + row.at(4),
                                    std::string("create docs"), "fill " + row.at(5)}) {
        player.Do(line);
    }
    EXPECT_EQ(player.answer, row.at(6));
}

INSTANTIATE_TEST_SUITE_P(Table, ConditionTest, testing::ValuesIn(CaseRows("conditions.txt")), CaseName);

} // namespace
