// How a condition template is filled, from the rows of a table.
#include "tests/unit/ScriptedPlatform.h"

namespace {

// Maps what a row says, and leaves everything else as it came in.
class MapTo : public AccessControl_ValuesFunctionInterface {
public:
    bool Initialize(std::string) override { return true; }
    bool MapValue(const std::string& value, std::string& mapped) override
    {
        mapped = table.count(value) != 0 ? table.at(value) : mapped;
        return false; // which nobody may rely on
    }
    std::map<std::string, std::string> table;
};

Lines List(const std::string& text)
{
    return text == "-" ? Lines() : Split(text, ";");
}

class ConditionTest : public testing::TestWithParam<Lines> {};

TEST_P(ConditionTest, IsFilled)
{
    script = Script();
    script.attributes = {
        {"uid", "u1"}, {"empty", ""}, {"", "nameless"}, {"op", "%equal_operator%"}, {"other", "$uid$"}};
    const Lines& row = GetParam();
    ConditionDefinition condition;
    condition.conditionText = row.at(1);
    condition.replaceFields = List(row.at(3));
    for (const std::string& token : List(row.at(4))) {
        condition.mandatoryFields[token] = 1;
    }
    if (row.at(5) != "-") {
        auto function = std::make_unique<MapTo>();
        for (const std::string& pair : List(row.at(5))) {
            function->table.emplace(Split(pair, "=>").at(0), Split(pair, "=>").at(1));
        }
        condition.valuesFunction = std::move(function);
    }
    WatchedManager manager("docs");
    manager.singleEqualOperator = "=";
    manager.multipleEqualOperator = "in";
    manager.valueMultiplicityDelimiter = ",";
    manager.valueMultiplicityPrefix = "(";
    manager.valueMultiplicitySuffix = ")";
    EXPECT_EQ(manager.HandleSingleConditionForUser(condition, List(row.at(2)), ScriptedUserDetails()), row.at(6));
    EXPECT_EQ(manager.HandleSingleCondition(condition, List(row.at(2)), ScriptedSecurityManager()), row.at(6));
}

INSTANTIATE_TEST_SUITE_P(Table, ConditionTest, testing::ValuesIn(CaseRows("conditions.txt")), CaseName);

} // namespace
