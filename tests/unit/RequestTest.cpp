#include "platform/security_manager/PermissionListInterface.h"
#include "tests/unit/ScriptedPlatform.h"

using testing::ElementsAre;

namespace {

const std::string filterLog = " SECM_AccessControlManager::GetAccessControlFilter: ";
const std::string connectionLog = " SECM_AccessControlManager::InitSecurityConnection: ";

PermissionBase Outright(const char* name)
{
    return {name, 1, nullptr, false};
}

PermissionBase For(const char* name, const char* resource)
{
    return {name, 1, resource, false};
}

class RequestTest : public ScriptedTest {};

TEST_F(RequestTest, ConnectionPassesEverythingOn)
{
    WatchedManager manager("docs");
    TakeJournal();
    EXPECT_TRUE(manager.InitSecurityConnection("text", 7));
    EXPECT_NE(manager.securityManager, nullptr);
    EXPECT_NE(manager.adminInterface, nullptr);
    EXPECT_THAT(TakeJournal(), ElementsAre("getSecurityManagerInterface AccessControl 285280791",
                                           "Initialize text 7 nonsecure brantor 0",
                                           "getSECM_Interface SecurityManagerAdminInterface 1",
                                           "admin Initialize text 7 nonsecure"));
}

struct Refusal {
    const char* name;
    bool Script::*withheld;
    bool hasSecurityManagerAfter;
    Lines tail;
};

class RefusalTest : public ScriptedTest, public testing::WithParamInterface<Refusal> {};

TEST_P(RefusalTest, IsLoggedReleasedAndForgotten)
{
    auto manager = ConnectedManager({});
    script.*GetParam().withheld = false;
    EXPECT_FALSE(manager->InitSecurityConnection("text", 7));
    EXPECT_EQ(manager->securityManager != nullptr, GetParam().hasSecurityManagerAfter);
    // A first interface that is refused leaves the second one of an earlier connection alone.
    EXPECT_EQ(manager->adminInterface == nullptr, GetParam().hasSecurityManagerAfter);
    const Lines journal = TakeJournal();
    ASSERT_GE(journal.size(), GetParam().tail.size());
    EXPECT_EQ(Lines(journal.end() - static_cast<std::ptrdiff_t>(GetParam().tail.size()), journal.end()),
              GetParam().tail);
}

const std::string noManager =
    "3" + connectionLog + "Failed to initialize security manager for access control\n";
const std::string noAdministration =
    "3" + connectionLog + "Failed to initialize security manager admin for access control\n";
INSTANTIATE_TEST_SUITE_P(
    Each, RefusalTest,
    testing::ValuesIn(std::vector<Refusal>{
        {"SecurityManager",
         &Script::securityManagerConnects,
         false,
         {"Initialize text 7 nonsecure brantor 0", noManager, "release security manager"}},
        {"NoSecurityManager",
         &Script::hasSecurityManager,
         false,
         {"getSecurityManagerInterface AccessControl 285280791", noManager}},
        {"Administration",
         &Script::administrationConnects,
         true,
         {"admin Initialize text 7 nonsecure", noAdministration, "release administration"}},
        {"NoAdministration",
         &Script::hasAdministration,
         true,
         {"getSECM_Interface SecurityManagerAdminInterface 1", noAdministration}},
    }),
    RowName());

TEST_F(RequestTest, LogsInComposesAndLogsOut)
{
    auto manager = ConnectedManager({{"a", {"A %values%", "B"}}, {"b", {"C %values%"}}, {"c", {"D"}}});
    script.permissions = {For("may a", "1"), For("may a", ""), For("may a", "2"), Outright("may b"),
                          For("may c", "%my%")};
    manager->isWatched = true;
    EXPECT_EQ(manager->GetAccessControlFilter("u", "ip"), "(A (1,2) OR B) AND D");
    EXPECT_THAT(
        TakeJournal(),
        ElementsAre(
            "7" + filterLog + "Getting Access control filter for user: u, ip: ip\n",
            "Login u||$$$NO_GROUP$$$|$$$NO_GROUP$$$|ip", "IsLoggedIn brantor",
            "7" + filterLog + "GetAccessControlFilter - IN\n", "CheckPermission may a:1:null:conditional",
            "GetResources may a 1 0", "step ReplaceSingleValue", "GetUserDetails",
            "step ReplaceSingleValueForUser", "step ReplaceSingleValue", "GetUserDetails",
            "step ReplaceSingleValueForUser", "step ReplaceSingleValue", "GetUserDetails",
            "step ReplaceSingleValueForUser", "step HandleSingleCondition", "GetUserDetails",
            "step HandleSingleConditionForUser", "step ApplyValuesFunction", "step ApplyValuesFunction",
            "step HandleSingleCondition", "GetUserDetails", "step HandleSingleConditionForUser",
            "step ApplyValuesFunction", "step ApplyValuesFunction",
            "CheckPermission may b:1:null:conditional", "CheckPermission may c:1:null:conditional",
            "GetResources may c 1 0", "step ReplaceSingleValue", "GetUserDetails",
            "step ReplaceSingleValueForUser", "step HandleSingleCondition", "GetUserDetails",
            "step HandleSingleConditionForUser", "step ApplyValuesFunction",
            "7" + filterLog + "GetAccessControlFilter - OUT. Filter: (A (1,2) OR B) AND D\n", "Logout"));
    std::string answer = "?";
    EXPECT_TRUE(manager->callback.GetUserName(answer) && answer == "u" &&
                manager->callback.GetIpAddress(answer) && answer == "ip");
}

TEST_F(RequestTest, AsksByNameWithoutLoggingIn)
{
    auto manager = ConnectedManager({{"a", {"A %values%"}}, {"b", {"B"}}});
    script.permissions = {Outright("may b"), For("may a", "%my%")};
    script.attributes = {{"uid", "u1"}};
    manager->fieldDefinitions[0]->myField = "$uid$";
    manager->isWatched = true;
    EXPECT_EQ(manager->GetAccessControlFilter("u"), "A u1");
    EXPECT_THAT(TakeJournal(),
                ElementsAre("7" + filterLog + "GetAccessControlFilter - IN\n", "admin GetUserDetails null u",
                            "GetGroupName ''", "7" + filterLog + "Getting filters for user: u, group: staff ",
                            "admin GetPermissionList staff u", "step CheckPermissionInList",
                            "step GetResourcesFromList", "step ReplaceSingleValueForUser",
                            "step ResolveUserField", "GetAttribute uid", "step HandleSingleConditionForUser",
                            "step ApplyValuesFunction", "step CheckPermissionInList",
                            "7" + filterLog + "GetAccessControlFilter - OUT. Filter: A u1\n",
                            "delete permission list"));
}

struct Composition {
    const char* name;
    std::vector<PermissionBase> permissions;
    const char* expected;
    const char* lastMessage = nullptr;
};

class CompositionTest : public ScriptedTest, public testing::WithParamInterface<Composition> {};

TEST_P(CompositionTest, AnswersOnBothRoads)
{
    auto manager = ConnectedManager({{"a", {"A%values%", "$x$", "B"}}, {"b", {"$x$"}}, {"c", {"C%values%"}}});
    for (const std::size_t field : {0U, 1U}) { // these conditions vanish for a single %my%
        ConditionDefinition& vanishing = manager->fieldDefinitions[field]->conditions[field == 0 ? 1 : 0];
        vanishing.replaceFields = {"$x$"};
        vanishing.mandatoryFields = {{"$x$", 1}};
    }
    script.permissions = GetParam().permissions;
    const std::string message =
        GetParam().lastMessage != nullptr
            ? GetParam().lastMessage
            : std::string("GetAccessControlFilter - OUT. Filter: ") + GetParam().expected + "\n";
    EXPECT_EQ(manager->GetAccessControlFilter(ScriptedSecurityManager()), GetParam().expected);
    EXPECT_EQ(TakeJournal().back(), "7" + filterLog + message);
    EXPECT_EQ(manager->GetAccessControlFilter("u"), GetParam().expected);
    const Lines journal = TakeJournal();
    EXPECT_EQ(journal.at(journal.size() - 2), "7" + filterLog + message);
}

INSTANTIATE_TEST_SUITE_P(
    Each, CompositionTest,
    testing::ValuesIn(std::vector<Composition>{
        {"NothingRestricts", {Outright("may a"), Outright("may b"), Outright("may c")}, ""},
        {"OneFieldStandsWithoutDelimiter", {Outright("may a"), Outright("may b"), For("may c", "1")}, "C1"},
        {"ConditionsAreBracketedFieldsAreNot",
         {For("may a", "1"), For("may b", "1"), For("may c", "2")},
         "(A1 OR $x$ OR B) AND $x$ AND C2"},
        {"EmptyConditionsAreNotJoined",
         {For("may a", "%my%"), Outright("may b"), Outright("may c")},
         "(A%values% OR B)"},
        {"AnEmptyClauseAddsNoDelimiter",
         {For("may a", "1"), For("may b", "%my%"), For("may c", "2")},
         "(A1 OR $x$ OR B) AND C2"},
        {"OneConditionLeftIsNotBracketed", {Outright("may a"), For("may b", "%my%"), Outright("may c")}, ""},
        {"OrderAndDuplicatesStay",
         {Outright("may a"), Outright("may b"), For("may c", "2"), For("may c", "1"), For("may c", "2")},
         "C(2,1,2)"},
        {"NoResource",
         {For("may a", "1"), Outright("may b")},
         "NOTHING",
         "No values were found for the permission: 'may c'\n"},
        {"OnlyEmptyResources",
         {For("may a", ""), Outright("may b"), Outright("may c")},
         "NOTHING",
         "No values were found for the permission: 'may a'\n"},
    }),
    RowName());

TEST_F(RequestTest, FallsBackToWhatShowsLess)
{
    auto manager = ConnectedManager({{"a", {"A"}}});
    script.isLoggedIn = false;
    EXPECT_EQ(manager->GetAccessControlFilter("u", "ip"), "DEFAULT");
    EXPECT_EQ(
        TakeJournal().back(),
        "6" + filterLog +
            "Security manager is not logged in - User does not exist, no access control will be applied\n");
    EXPECT_EQ(manager->GetAccessControlFilter(static_cast<SecurityManagerInterface*>(nullptr)), "NOTHING");
    EXPECT_EQ(TakeJournal().back(), "3" + filterLog + "secmInterface is null - returning\n");
    script.resourcesAreTold = false;
    EXPECT_EQ(manager->GetAccessControlFilter(ScriptedSecurityManager()), "NOTHING");
    EXPECT_EQ(TakeJournal().back(),
              "3" + filterLog + "Couldn't get resources for user for permission name: 'may a'\n");
    script.hasPermissionList = false;
    EXPECT_EQ(manager->GetAccessControlFilter("u"), "NOTHING");
    EXPECT_EQ(TakeJournal().back(),
              "3" + filterLog + "Couldn't get permission list for user 'u' and group 'staff'\n");
    script.hasUserDetails = false;
    EXPECT_EQ(manager->GetAccessControlFilter("u"), "DEFAULT");
    EXPECT_EQ(TakeJournal().back(), "6" + filterLog + "Couldn't get user details for userName: 'u'\n");
    manager->adminInterface = nullptr;
    EXPECT_EQ(manager->GetAccessControlFilter("u"), "NOTHING");
    EXPECT_EQ(TakeJournal().back(), "3" + filterLog + "Security manager admin is not initialized\n");
    manager->securityManager = nullptr;
    manager->callback.userName = "before";
    EXPECT_EQ(manager->GetAccessControlFilter("u", "ip"), "NOTHING");
    EXPECT_THAT(TakeJournal(), ElementsAre("3" + filterLog + "Security manager is not initialized\n"));
    EXPECT_EQ(manager->callback.userName, "before");
    EXPECT_EQ(manager->GetValueMultiplicityDelimiter(), ",");
}

// Whichever call to the outside throws, the exception arrives, and the next request is answered as if nothing
// had been.
TEST_F(RequestTest, NoFilterComesOutOfAFault)
{
    auto manager = ConnectedManager({{"a", {"A %values%", "$uid$"}}, {"b", {"B"}}});
    script.permissions = {For("may a", "%my%"), For("may b", "1")};
    script.attributes = {{"uid", "u1"}};
    manager->fieldDefinitions[0]->myField = "$uid$";
    for (const bool byName : {false, true}) {
        const auto request = [&] {
            return byName ? manager->GetAccessControlFilter("u") : manager->GetAccessControlFilter("u", "");
        };
        script.calls = 0;
        const std::string filter = request();
        const int calls = script.calls;
        ASSERT_GT(calls, 3);
        for (int call = 1; call <= calls; ++call) {
            script.calls = 0;
            script.callToFail = call;
            EXPECT_THROW(request(), std::runtime_error) << call;
            script.callToFail = 0;
            EXPECT_EQ(request(), filter) << call;
        }
    }
}

TEST_F(RequestTest, UnwantedMessagesAreNotWritten)
{
    auto manager = ConnectedManager({});
    script.logLevel = 6;
    manager->GetAccessControlFilter(ScriptedSecurityManager());
    EXPECT_THAT(TakeJournal(), ElementsAre());
}

TEST_F(RequestTest, PermissionsAreMatchedInAList)
{
    auto manager = ConnectedManager({});
    const std::unique_ptr<PermissionListInterface> list(ScriptedPermissionList());
    const struct {
        const char* why;
        PermissionBase sought;
        std::vector<PermissionBase> listed;
        bool expected;
    } cases[] = {
        {"empty list", {"p", 1, nullptr, true}, {}, false},
        {"held", {"p", 1, nullptr, true}, {{"p", 3, nullptr, true}}, true},
        {"other case", {"p", 1, nullptr, true}, {{"P", 1, nullptr, true}}, false},
        {"first equal decides",
         {"p", 1, nullptr, true},
         {{"p", 2, nullptr, true}, {"p", 1, nullptr, true}},
         false},
        {"null is not empty", {"p", 1, nullptr, true}, {{"p", 1, "", true}}, false},
        {"no fallback without resource", {"p", 1, nullptr, true}, {{"p", 1, "default", true}}, false},
        {"fallback", {"p", 1, "r", true}, {{"p", 1, "default", true}}, true},
        {"no fallback after an equal one",
         {"p", 1, "r", true},
         {{"p", 2, "r", true}, {"p", 1, "default", true}},
         false},
        {"fallback keeps the value", {"p", 4, "r", true}, {{"p", 1, "default", true}}, false},
        {"fallback keeps the condition", {"p", 1, "r", false}, {{"p", 1, "default", true}}, false},
        {"fallback keeps the name", {"p", 1, "r", true}, {{"q", 1, "default", true}}, false},
        {"unconditional asks for unconditional", {"p", 1, nullptr, false}, {{"p", 1, nullptr, true}}, false},
        {"unconditional grants conditional", {"p", 1, nullptr, true}, {{"p", 1, nullptr, false}}, true},
    };
    for (const auto& each : cases) {
        script.permissions = each.listed;
        EXPECT_EQ(manager->CheckPermissionInList(list.get(), each.sought), each.expected) << each.why;
    }
    script.permissions = {{"p", 3, "a", true},  {"p", 2, "b", false},  {"p", 1, nullptr, false},
                          {"P", 1, "c", false}, {"p ", 1, "d", false}, {"p", 1, "", false},
                          {"p", 1, "a", false}};
    Lines resources = {"kept"};
    EXPECT_TRUE(manager->GetResourcesFromList(list.get(), "p", 1, resources));
    EXPECT_THAT(resources, ElementsAre("kept", "a", "", "a"));
    resources.clear();
    EXPECT_TRUE(manager->GetResourcesFromList(list.get(), "p", 0, resources));
    EXPECT_THAT(resources, ElementsAre("a", "b", "", "a"));
}

} // namespace
