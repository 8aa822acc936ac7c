#include "tests/unit/ScriptedPlatform.h"

using testing::ElementsAre;
using testing::Pair;

namespace {

const std::string readConfigurations = " SECM_AccessControlManager::ReadConfigurations: ";
const std::string fieldsNode = configurationRoot + "fields\\";

class ConfigurationReadingTest : public ScriptedTest {
protected:
    // One field with what makes a definition whole.
    static void ConfigureField(const std::string& field, const std::map<std::string, std::string>& values)
    {
        for (const auto& [key, value] : values) {
            Configure(fieldsNode + field + "\\docs\\" + key, value);
        }
    }
};

TEST_F(ConfigurationReadingTest, AsksForEverythingOnceAndInOrder)
{
    Configure(repositoryNode + "hide_all_filter", " none ");
    ConfigureField("site", {{"permission_name", "p"},
                            {"permission_value", "-1"},
                            {"condition1", "c"},
                            {"values_function1", "CodeToDisplayName"},
                            {"values_function_config_string1", "kinds"}});
    Configure(fieldsNode + "other\\elsewhere\\condition1", "x");
    Configure("zarvona\\system\\applications\\codes\\kinds\\A\\display_name", "a");
    {
        const WatchedManager manager("docs");
        EXPECT_EQ(manager.hideAllFilter, " none ");
        ASSERT_EQ(manager.fieldDefinitions.size(), 1U);
        EXPECT_EQ(manager.fieldDefinitions[0]->permissionValue, 0xffffffffU);
    }
    EXPECT_THAT(
        TakeJournal(),
        ElementsAre("GetRepositoryServices", "GetSubTree " + repositoryNode, "GetValue hide_all_filter",
                    "GetValue default_filter", "GetValue filter_delimiter", "GetValue single_equal_operator",
                    "GetValue multiple_equal_operator", "GetValue value_multiplicity_delimiter",
                    "GetValue value_multiplicity_prefix", "GetValue value_multiplicity_suffix",
                    "GetSubTree " + fieldsNode, "GetChildNames " + fieldsNode,
                    "GetSubTree " + fieldsNode + "site\\docs\\", "GetValue permission_name",
                    "GetValue conditions_delimiter", "GetValue my_field", "GetIntValue permission_value",
                    "GetValue condition1", "GetValue mandatory_fields1", "GetValue replace_fields1",
                    "GetValue values_function1", "GetValue values_function_config_string1",
                    "GetRepositoryServices", "GetSubTree zarvona\\system\\applications\\codes\\kinds\\",
                    "GetChildNames zarvona\\system\\applications\\codes\\kinds\\",
                    "GetValueByPath zarvona\\system\\applications\\codes\\kinds\\A\\display_name",
                    "delete names", "delete zarvona\\system\\applications\\codes\\kinds\\",
                    "GetValue condition2", "delete " + fieldsNode + "site\\docs\\",
                    "GetSubTree " + fieldsNode + "other\\docs\\", "delete names", "delete " + fieldsNode,
                    "delete " + repositoryNode));
}

TEST_F(ConfigurationReadingTest, SaysWhatIsMissing)
{
    script.hasRepositoryServices = false;
    EXPECT_EQ(WatchedManager("docs").valuesFunctionFactories.size(), 2U);
    EXPECT_THAT(TakeJournal(), ElementsAre("GetRepositoryServices",
                                           "3" + readConfigurations + "Could not create CFG instance\n"));

    script.hasRepositoryServices = true;
    WatchedManager withoutRepository("");
    EXPECT_THAT(TakeJournal(),
                ElementsAre("GetRepositoryServices", "GetSubTree " + configurationRoot + "repositories\\\\",
                            "7" + readConfigurations + "No access control configurations\n"));

    Configure(repositoryNode + "default_filter", "d");
    WatchedManager withoutFields("docs");
    EXPECT_EQ(withoutFields.defaultFilter, "d");
    const Lines journal = TakeJournal();
    EXPECT_THAT(Lines(journal.end() - 3, journal.end()),
                ElementsAre("GetSubTree " + fieldsNode,
                            "7" + readConfigurations + "No access control configurations\n",
                            "delete " + repositoryNode));
}

TEST_F(ConfigurationReadingTest, TakesConditionsUpToTheFirstGapWithTheirOwnLists)
{
    ConfigureField("f", {{"permission_name", "p"},
                         {"permission_value", "1"},
                         {"conditions_delimiter", "|"},
                         {"my_field", "$m$"},
                         {"condition1", "one"},
                         {"mandatory_fields1", ",$a$,, $b$ ,$a$"},
                         {"replace_fields1", "$c$,$c$,"},
                         {"condition2", "two"},
                         {"replace_fields2", ",,,"},
                         {"values_function2", "codetodisplayname"},
                         {"values_function_config_string2", "kinds"},
                         {"condition4", "never"}});
    Configure(repositoryNode, "");
    const WatchedManager manager("docs");
    ASSERT_EQ(manager.fieldDefinitions.size(), 1U);
    const FieldDefinition& field = *manager.fieldDefinitions[0];
    EXPECT_EQ(field.permissionName + field.conditionsDelimiter + field.myField, "p|$m$");
    ASSERT_EQ(field.conditions.size(), 2U);
    EXPECT_EQ(field.conditions[0].conditionText + field.conditions[1].conditionText, "onetwo");
    EXPECT_THAT(field.conditions[0].mandatoryFields, ElementsAre(Pair(" $b$ ", 1), Pair("$a$", 1)));
    EXPECT_THAT(field.conditions[0].replaceFields, ElementsAre("$c$", "$c$"));
    EXPECT_THAT(field.conditions[1].replaceFields, ElementsAre());
    const Lines journal = TakeJournal();
    EXPECT_THAT(journal, testing::Contains("3" + readConfigurations +
                                           "Couldn't find values function codetodisplayname\n"));
    EXPECT_THAT(journal, testing::Not(testing::Contains("GetValue values_function_config_string2")));
    EXPECT_THAT(journal, testing::Not(testing::Contains("GetValue condition4")));
}

struct BadDefinition {
    const char* name;
    std::map<std::string, std::string> values;
    bool conditionsAreRead;
};

class BadDefinitionTest : public ConfigurationReadingTest,
                          public testing::WithParamInterface<BadDefinition> {};

TEST_P(BadDefinitionTest, IsLoggedAndLeftOutAlone)
{
    Configure(repositoryNode, "");
    ConfigureField("bad", GetParam().values);
    ConfigureField("good", {{"permission_name", "p"}, {"permission_value", "0"}, {"condition1", "c"}});
    const WatchedManager manager("docs");
    ASSERT_EQ(manager.fieldDefinitions.size(), 1U);
    EXPECT_EQ(manager.fieldDefinitions[0]->permissionName, "p");
    const Lines journal = TakeJournal();
    EXPECT_EQ(
        std::count(journal.begin(), journal.end(),
                   "3" + readConfigurations + "Invalid access control configurations under bad\\docs\n"),
        1);
    EXPECT_EQ(std::count(journal.begin(), journal.end(), "GetValue condition1"),
              GetParam().conditionsAreRead ? 2 : 1);
    EXPECT_EQ(std::count(journal.begin(), journal.end(), "GetChildNames zarvona\\system\\sites\\"),
              GetParam().conditionsAreRead && GetParam().values.count("values_function1") != 0 ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(
    Each, BadDefinitionTest,
    testing::ValuesIn(std::vector<BadDefinition>{
        {"NoPermissionValue",
         {{"permission_name", "p"}, {"condition1", "c"}, {"values_function1", "SiteIdToIssuer"}},
         false},
        {"NoCondition", {{"permission_name", "p"}, {"permission_value", "1"}, {"condition2", "c"}}, true},
        {"NoPermissionName",
         {{"permission_value", "1"}, {"condition1", "c"}, {"values_function1", "SiteIdToIssuer"}},
         true},
        {"TwoConditionsWithoutDelimiter",
         {{"permission_name", "p"}, {"permission_value", "1"}, {"condition1", "c"}, {"condition2", "d"}},
         true},
    }),
    RowName());

TEST_F(ConfigurationReadingTest, ReadingAgainStartsAfresh)
{
    auto manager = ConnectedManager({{"a", {"x"}}, {"b", {"y"}}});
    manager->ReadConfigurations();
    EXPECT_EQ(manager->fieldDefinitions.size(), 2U);
    manager->ClearFieldDefinitions();
    EXPECT_EQ(manager->fieldDefinitions.size(), 0U);
    Lines entries = {"kept"};
    manager->SplitCommaList("a, b,,c", entries);
    manager->SplitCommaList("", entries);
    EXPECT_THAT(entries, ElementsAre("kept", "a", " b", "c"));
}

TEST_F(ConfigurationReadingTest, LastRegistrationOfAValuesFunctionWins)
{
    WatchedManager manager("docs");
    const ValuesFunctionFactory second = [] {
        return static_cast<AccessControl_ValuesFunctionInterface*>(nullptr);
    };
    manager.RegisterValuesFunction("SiteIdToIssuer", second);
    EXPECT_EQ(manager.valuesFunctionFactories.size(), 2U);
    EXPECT_EQ(manager.valuesFunctionFactories.at("SiteIdToIssuer"), second);
}

} // namespace
