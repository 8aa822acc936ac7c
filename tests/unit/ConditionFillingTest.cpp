#include "tests/unit/ScriptedPlatform.h"

using testing::ElementsAre;

namespace {

// Maps what a test says; leaves everything else as it came in.
class MapTo : public AccessControl_ValuesFunctionInterface {
public:
    explicit MapTo(std::map<std::string, std::string> table) : mapped(std::move(table)) {}
    bool Initialize(std::string) override { return true; }
    bool MapValue(const std::string& value, std::string& out) override
    {
        if (mapped.count(value) != 0) {
            out = mapped.at(value);
        }
        return false; // which nobody may rely on
    }
    std::map<std::string, std::string> mapped;
};

struct ConditionCase {
    const char* name;
    const char* conditionText;
    Lines values;
    const char* expected;
    Lines replaceFields = {};
    Lines mandatoryFields = {};
    std::map<std::string, std::string> mapped = {};
};

class ConditionTest : public ScriptedTest, public testing::WithParamInterface<ConditionCase> {};

TEST_P(ConditionTest, IsFilledFor)
{
    auto manager = ConnectedManager({});
    script.attributes = {
        {"uid", "u1"}, {"empty", ""}, {"", "nameless"}, {"op", "%equal_operator%"}, {"other", "$uid$"}};
    ConditionDefinition condition;
    condition.conditionText = GetParam().conditionText;
    condition.replaceFields = GetParam().replaceFields;
    for (const auto& token : GetParam().mandatoryFields) {
        condition.mandatoryFields[token] = 1;
    }
    if (!GetParam().mapped.empty()) {
        condition.valuesFunction = std::make_unique<MapTo>(GetParam().mapped);
    }
    EXPECT_EQ(manager->HandleSingleConditionForUser(condition, GetParam().values, ScriptedUserDetails()),
              GetParam().expected);
    EXPECT_EQ(manager->HandleSingleCondition(condition, GetParam().values, ScriptedSecurityManager()),
              GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Placeholders, ConditionTest,
    testing::ValuesIn(std::vector<ConditionCase>{
        {"OneValue", "site %equal_operator% %values%", {"7"}, "site = 7"},
        {"SeveralValues", "site %equal_operator% %values%", {"7", "9", "7"}, "site in (7,9,7)"},
        {"NoValue", "site %equal_operator% %values%", {}, "site in ()"},
        {"NoPlaceholder", "site", {"7"}, "site"},
        {"OnlyTheFirstIsFilled",
         "%values% %values% %equal_operator% %equal_operator%",
         {"7"},
         "7 %values% = %equal_operator%"},
        {"OtherCaseIsText", "%VALUES% %Equal_Operator%", {"7"}, "%VALUES% %Equal_Operator%"},
        {"OperatorInsideAValueIsFilledFirst",
         "%values% %equal_operator%",
         {"%equal_operator%"},
         "= %equal_operator%"},
        {"PlaceholderInsideAValueIsText", "%values% %equal_operator%", {"%values%"}, "%values% ="},
        {"ListsKeepEmptyMappedValues", "%values%", {"x", "y", "z"}, "(x,,z)", {}, {}, {{"y", ""}}},
        {"MappedValueMayBeEmpty", "[%values%]", {"y"}, "[]", {}, {}, {{"y", ""}}},
        {"OwnValueFillsTokens",
         "owner %equal_operator% '$uid$' %values%",
         {"%my%"},
         "owner = 'u1' %values%",
         {"$uid$"}},
        {"OwnValueAfterMapping", "$uid$", {"me"}, "u1", {"$uid$"}, {}, {{"me", "%my%"}}},
        {"OwnValueMappedAway", "$uid$ %values%", {"%my%"}, "$uid$ x", {"$uid$"}, {}, {{"%my%", "x"}}},
        {"OwnValueAmongOthersIsText", "$uid$ %values%", {"%my%", "5"}, "$uid$ (%my%,5)", {"$uid$"}},
        {"OtherValueFillsNoTokens", "$uid$", {"%My%"}, "$uid$", {"$uid$"}},
        {"MissingAttributeIsEmpty", "[$none$]", {"%my%"}, "[]", {"$none$"}, {"$other$"}},
        {"MissingMandatoryAttribute", "a $uid$ $none$", {"%my%"}, "", {"$uid$", "$none$"}, {"$none$"}},
        {"MandatoryNeedNotStandInTheTemplate", "a", {"%my%"}, "", {"$none$"}, {"$none$"}},
        {"EmptyAttributeIsNotMissing", "[$empty$]", {"%my%"}, "[]", {"$empty$"}, {"$empty$"}},
        {"MandatoryAloneIsNotLookedAt", "[$none$]", {"%my%"}, "[$none$]", {}, {"$none$"}},
        {"UnframedTokensAreText",
         "uid $uid uid$",
         {"%my%"},
         "uid $uid uid$",
         {"uid", "$uid", "uid$", ""},
         {"uid"}},
        {"OneCharacterToken", "a$b", {"%my%"}, "anamelessb", {"$"}},
        {"RepeatedTokenFillsTheNext", "$uid$ $uid$ $uid$", {"%my%"}, "u1 u1 $uid$", {"$uid$", "$uid$"}},
        {"TokenInsideAnAttribute", "$other$ $uid$", {"%my%"}, "u1 $uid$", {"$other$", "$uid$"}},
        {"OperatorInsideAnAttribute", "$op$ %equal_operator%", {"%my%"}, "= %equal_operator%", {"$op$"}},
    }),
    RowName());

class OwnValueTest : public ScriptedTest {};

TEST_F(OwnValueTest, IsReplacedByTheAttributeThatMyFieldNames)
{
    auto manager = ConnectedManager({});
    script.attributes = {{"uid", "u1"}, {"i", "middle"}, {"", "nameless"}};
    const struct {
        const char* value;
        const char* myField;
        const char* expected;
    } cases[] = {{"%my%", "$uid$", "u1"},     {"%my%", "", "%my%"},      {"%my%", "uid", "middle"},
                 {"%my%", "$none$", ""},      {"%my%", "$", "nameless"}, {"%MY%", "$uid$", "%MY%"},
                 {"%my% ", "$uid$", "%my% "}, {"", "$uid$", ""}};
    for (const auto& each : cases) {
        FieldDefinition field;
        field.myField = each.myField;
        std::string value = each.value;
        manager->ReplaceSingleValueForUser(value, field, ScriptedUserDetails());
        EXPECT_EQ(value, each.expected) << each.value << " with " << each.myField;
        value = each.value;
        manager->ReplaceSingleValue(value, field, ScriptedSecurityManager());
        EXPECT_EQ(value, each.expected) << each.value << " with " << each.myField;
    }
}

TEST_F(OwnValueTest, StaysWhenNobodyCanBeAsked)
{
    auto manager = ConnectedManager({});
    script.hasUserDetails = false;
    FieldDefinition field;
    field.myField = "$uid$";
    std::string value = "%my%";
    manager->ReplaceSingleValue(value, field, nullptr);
    manager->ReplaceSingleValue(value, field, ScriptedSecurityManager());
    EXPECT_EQ(value, "%my%");
    ConditionDefinition condition;
    condition.conditionText = "text";
    EXPECT_EQ(manager->HandleSingleCondition(condition, {"1"}, nullptr), "");
    EXPECT_EQ(manager->HandleSingleCondition(condition, {"1"}, ScriptedSecurityManager()), "");
    const std::string manages = "3 SECM_AccessControlManager::";
    EXPECT_THAT(
        TakeJournal(),
        ElementsAre(manages + "ReplaceSingleValue: secmInterface is null", "GetUserDetails",
                    manages + "ReplaceSingleValue: userDetails are null",
                    manages + "HandleSingleCondition: secmInterface is null - returning empty string",
                    "GetUserDetails",
                    manages + "HandleSingleCondition: userDetails are null - returning empty string"));
}

} // namespace
