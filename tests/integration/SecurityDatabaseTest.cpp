// Both roads to the security database, and requests after the database changed or broke.
#include "SECM_AccessControl/AccessControlCallback.h"
#include "SECM_AccessControl/SECM_AccessControlInterface.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/security_manager/PermissionListInterface.h"
#include "platform/security_manager/SECM_Listing.h"
#include "platform/security_manager/SMADM_Interface.h"
#include "platform/security_manager/SecurityManagerInterface.h"
#include "platform/security_manager/UserDetailsInterface.h"
#include "tests/Permissions.h"
#include "tests/integration/Workspace.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>
#include <thread>
#include <tuple>

namespace {

using namespace secm::testing;

using testing::HasSubstr;
using SecurityDatabaseTest = EngineTest;

ON_BOTH_ENGINES(SecurityDatabaseTest);

std::unique_ptr<SECM_AccessControlInterface> ConnectedManager(const std::string& configuration, std::string repository,
                                                              const std::string& connection)
{
    setenv("CFG_REPOSITORY", configuration.c_str(), 1);
    CFG_Factory::Reload();
    std::unique_ptr<SECM_AccessControlInterface> manager(SECM_AccessControlInterface::CreateInstance(repository));
    EXPECT_TRUE(manager->InitSecurityConnection(connection.c_str(), 10));
    return manager;
}

TEST_P(SecurityDatabaseTest, LogsInWhoeverTheCallbackNames)
{
    EXPECT_EQ(getSecurityManagerInterface("Test", 1), nullptr);
    SecurityManagerInterface* manager = getSecurityManagerInterface("Test", 0x11010A17);
    AccessControlCallback callback;
    SECM_CallBackInterface silent;
    EXPECT_THROW(manager->Login(&callback, false), std::runtime_error);
    EXPECT_FALSE(manager->Initialize(connection.c_str(), 5, "secure", &callback, false));
    EXPECT_FALSE(manager->Initialize(nullptr, 5, nullptr, &callback, false));
    ASSERT_TRUE(manager->Initialize(connection.c_str(), 5, "nonsecure", &callback, false));
    EXPECT_THROW(manager->Login(nullptr, false), std::runtime_error);
    EXPECT_THROW(manager->Login(&silent, false), std::runtime_error);
    for (const Lines& row : CaseRows("logins.txt")) {
        callback.userName = row.at(0);
        callback.group = row.at(1);
        callback.secondGroup = row.at(2);
        std::string granted = manager->Login(&callback, false) ? "yes" : "no";
        Lines resources = {"kept"};
        EXPECT_EQ(manager->GetResources(row.at(3), static_cast<unsigned>(std::stoul(row.at(4))), resources),
                  granted == "yes");
        EXPECT_EQ(manager->IsLoggedIn("brantor"), granted == "yes");
        EXPECT_FALSE(manager->IsLoggedIn("other") || manager->IsLoggedIn(nullptr));
        EXPECT_EQ(manager->GetUserDetails() != nullptr, granted == "yes");
        for (std::size_t n = 1; n < resources.size(); ++n) {
            granted += " [" + resources[n] + "]";
        }
        EXPECT_EQ(granted, row.at(5)) << row.at(0) << " in " << row.at(1) << " and " << row.at(2);
    }
    callback = AccessControlCallback();
    callback.userName = "checker";
    manager->Login(&callback, false);
    for (const Lines& row : CaseRows("checks.txt")) {
        EXPECT_EQ(manager->CheckPermission(PermissionFrom(row.at(0))) ? "yes" : "no", row.at(1)) << row.at(0);
    }
    EXPECT_TRUE(manager->Logout());
    EXPECT_FALSE(manager->Logout() || manager->IsLoggedIn("brantor") ||
                 manager->CheckPermission(PermissionFrom("p:1:null")));
    callback.userName = std::string("mira\0x", 6);
    EXPECT_THROW(manager->Login(&callback, false), std::runtime_error);
    releaseSecurityManagerInterface(manager);
}

TEST_P(SecurityDatabaseTest, TellsOfAnyUserByName)
{
    EXPECT_EQ(getSECM_Interface("Test", 2), nullptr);
    SMADM_Interface* administration = getSECM_Interface("Test", 1);
    EXPECT_THROW(administration->GetUserDetails(nullptr, "lena"), std::runtime_error);
    ASSERT_TRUE(administration->Initialize(connection.c_str(), 0, "nonsecure"));
    EXPECT_STREQ(administration->GetUserDetails(nullptr, "lena")->GetAttribute("region"), "baltic");
    EXPECT_EQ(administration->GetUserDetails(nullptr, "lena")->GetAttribute("regio"), nullptr);
    EXPECT_EQ(administration->GetUserDetails(nullptr, "Lena"), nullptr);
    const std::unique_ptr<PermissionListInterface> list(administration->GetPermissionList("both", "both"));
    ASSERT_EQ(list->GetPermissions()->size(), 3U);
    EXPECT_STREQ(list->GetPermissions()->front().resource(), "first");
    releaseSECM_Interface(administration);
}

TEST_P(SecurityDatabaseTest, ARequestThatMeetsABrokenDatabaseThrowsAndTheNextIsServed)
{
    const auto accessControl = ConnectedManager(SAMPLE_FOLDER "/archive.toml", "documents", connection);
    for (const std::string table : {"security_attribute", "security_permission"}) {
        EXPECT_EQ(accessControl->GetAccessControlFilter("hugo", ""), "department = ('Legal')");
        EXPECT_EQ(accessControl->GetAccessControlFilter("hugo"), "department = ('Legal')");
        Sql("ALTER TABLE " + table + " RENAME TO gone");
        EXPECT_THROW(accessControl->GetAccessControlFilter("hugo", ""), std::runtime_error);
        EXPECT_THROW(accessControl->GetAccessControlFilter("hugo"), std::runtime_error);
        EXPECT_THROW(accessControl->GetAccessControlFilter("nobody", ""), std::runtime_error);
        Sql("ALTER TABLE gone RENAME TO " + table);
    }
}

// Each transaction moves a user to the other group and swaps the grants of both groups. The user is restricted before
// and after it, but not between its statements.
TEST_P(SecurityDatabaseTest, ARequestSeesEachTransactionWhollyOrNotAtAll)
{
    const std::string top = "[zarvona.system.applications.securitymanager.unified_access_control.";
    Write("moves.toml", top + "repositories.r]\nhide_all_filter = 'none'\n" + top +
                            "fields.f.r]\npermission_name = 'moved'\npermission_value = 1\ncondition1 = '%values%'\n");
    const auto move = [](const std::string& to, const std::string& from) {
        return "BEGIN; UPDATE security_user SET group_name = '" + to +
               "' WHERE user_name = 'mover'; UPDATE security_permission SET resource = '" + to + "' WHERE grantee = '" +
               to + "'; UPDATE security_permission SET resource = NULL WHERE grantee = '" + from + "'; COMMIT;\n";
    };
    Write("moves.sql", move("b", "a") + move("a", "b"));
    Sql("INSERT INTO security_user VALUES ('mover', 'a'); INSERT INTO security_permission VALUES"
        " (9001, 'group', 'a', 'moved', 1, 'a', 0), (9002, 'group', 'b', 'moved', 1, NULL, 0);");
    const auto accessControl = ConnectedManager(Path("moves.toml"), "r", connection);

    Outcome written;
    std::thread writer([&] {
        written = Run(std::string("(echo '") + (isPostgreSql ? "" : ".timeout 10000\nPRAGMA synchronous = OFF;") +
                      "'; while [ ! -e stop ]; do cat moves.sql; done) | " +
                      (isPostgreSql ? "sql security" : "sqlite3 -bail security.db"));
    });
    std::map<std::string, int> answers;
    for (int requests = 0; requests < 3000 || (answers.size() < 2 && requests < 100000); ++requests) {
        ++answers[accessControl->GetAccessControlFilter("mover", "")];
        ++answers[accessControl->GetAccessControlFilter("mover")];
    }
    Write("stop", "");
    writer.join();
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.errors, "");
    EXPECT_THAT(answers, testing::ElementsAre(testing::Key("a"), testing::Key("b")));
}

// Only the first list after GetUserDetails, of the same user and group, is what was read with the user.
TEST_P(SecurityDatabaseTest, AListIsReadAnewUnlessItFollowsItsUser)
{
    Sql("INSERT INTO security_user VALUES ('lister', 'g');");
    SMADM_Interface* administration = getSECM_Interface("Test", 1);
    ASSERT_TRUE(administration->Initialize(connection.c_str(), 5, "nonsecure"));
    const auto count = [&](const char* group, const char* user) {
        return std::unique_ptr<PermissionListInterface>(administration->GetPermissionList(group, user))
            ->GetPermissions()
            ->size();
    };
    for (const auto& [group, user, first] :
         std::vector<std::tuple<const char*, const char*, std::size_t>>{{"g", "lister", 0}, {"G", "lister", 1}}) {
        Sql("DELETE FROM security_permission WHERE position > 9000");
        EXPECT_NE(administration->GetUserDetails(nullptr, "lister"), nullptr);
        Sql("INSERT INTO security_permission VALUES (9001, 'user', 'lister', 'p', 1, NULL, 0)");
        EXPECT_EQ(count(group, user), first) << group;
        EXPECT_EQ(count("g", "lister"), 1U) << group;
    }
    releaseSECM_Interface(administration);
}

TEST_P(SecurityDatabaseTest, OutrightGrantsOfOnePermissionAddUp)
{
    Sql("INSERT INTO security_user VALUES ('adder', 'adders');");
    AccessControlCallback callback;
    callback.userName = "adder";
    callback.group = callback.secondGroup = "adders";
    SecurityManagerInterface* manager = getSecurityManagerInterface("Test", 0x11010A17);
    SMADM_Interface* administration = getSECM_Interface("Test", 1);
    ASSERT_TRUE(manager->Initialize(connection.c_str(), 5, "nonsecure", &callback, false));
    ASSERT_TRUE(administration->Initialize(connection.c_str(), 5, "nonsecure"));
    const auto listing = openSECM_Listing(connection.c_str(), 5);
    for (const Lines& row : CaseRows("outright_grants.txt")) {
        std::string rows, granted;
        int position = 9000;
        for (const std::string& grant : Split(row.at(1), ";")) {
            const PermissionBase permission = PermissionFrom(Split(grant, " ").at(1));
            const std::string resource = permission.resource() != nullptr ? permission.resource() : "";
            rows += (rows.empty() ? "(" : ", (") + std::to_string(++position) +
                    (grant.starts_with("user") ? ", 'user', 'adder', '" : ", 'group', 'adders', '") +
                    permission.name() + "', " + std::to_string(permission.value()) +
                    (permission.resource() != nullptr ? ", '" + resource + "', " : ", NULL, ") +
                    (permission.IsConditional() ? "1)" : "0)");
            granted += (granted.empty() ? "" : ";") + Split(grant, " ").at(1);
        }
        Sql("DELETE FROM security_permission WHERE position > 9000; INSERT INTO security_permission VALUES " + rows);

        std::string listed;
        listing->ForEachGrant([&](const SECM_Grant& grant) {
            listed += grant.position > 9000 ? (listed.empty() ? "" : ";") + Shown(grant.permission) : "";
        });
        EXPECT_EQ(listed, granted) << row.at(0);

        ASSERT_NE(administration->GetUserDetails(nullptr, "adder"), nullptr);
        for (const char* read : {"with the user", "anew"}) {
            const std::unique_ptr<PermissionListInterface> list(administration->GetPermissionList("adders", "adder"));
            std::string held;
            for (const PermissionBase& permission : *list->GetPermissions()) {
                held += (held.empty() ? "" : ";") + Shown(permission);
            }
            EXPECT_EQ(held, row.at(2)) << row.at(0) << ", read " << read;
        }

        ASSERT_TRUE(manager->Login(&callback, false));
        for (const PermissionBase& held : PermissionsFrom(row.at(2))) {
            const auto holds = [&](unsigned value, bool isConditional) {
                return manager->CheckPermission({held.name(), value, nullptr, isConditional});
            };
            if (held.resource() == nullptr) {
                EXPECT_TRUE(holds(held.value(), true)) << row.at(0);
                EXPECT_EQ(holds(held.value(), false), !held.IsConditional()) << row.at(0);
                EXPECT_EQ(holds(held.value() | 16U, true), held.value() == 4294967295) << row.at(0);
            }
        }
    }
    releaseSECM_Interface(administration);
    releaseSecurityManagerInterface(manager);
}

TEST_P(SecurityDatabaseTest, IsListedWholeOverManyPages)
{
    Sql(Read(CASES_FOLDER "/many.sql"));
    const auto listing = openSECM_Listing(connection.c_str(), 5);
    Lines users, attributes, grants;
    listing->ForEachUser([&](const std::string& name) { users.push_back(name); });
    listing->ForEachAttribute([&](const SECM_Attribute& attribute) {
        attributes.push_back(attribute.userName + "|" + attribute.name + "|" + attribute.value);
    });
    listing->ForEachGrant([&](const SECM_Grant& grant) {
        const char* resource = grant.permission.resource();
        grants.push_back(std::to_string(grant.position) + (grant.isToGroup ? "|group|" : "|user|") + grant.grantee +
                         "|" + std::to_string(grant.permission.value()) + (resource != nullptr ? resource : "NULL"));
    });
    const auto expectRows = [&](Lines listed, const std::string& statement) {
        Lines rows = Split(Sql(statement), "\n");
        rows.pop_back();
        EXPECT_GT(rows.size(), 2000U);
        for (Lines* lines : {&listed, &rows}) {
            std::sort(lines->begin(), lines->end());
        }
        EXPECT_TRUE(listed == rows) << statement;
    };
    expectRows(users, "SELECT user_name FROM security_user");
    expectRows(attributes, "SELECT user_name, attribute_name, attribute_value FROM security_attribute");
    expectRows(grants, "SELECT position, grantee_type, grantee, permission_value || coalesce(resource, 'NULL')"
                       " FROM security_permission");
}

TEST_P(SecurityDatabaseTest, AForkedProcessConnectsByItself)
{
    SecurityManagerInterface* manager = getSecurityManagerInterface("Test", 0x11010A17);
    AccessControlCallback callback;
    callback.userName = "mira";
    callback.group = callback.secondGroup = "department_staff";
    ASSERT_TRUE(manager->Initialize(connection.c_str(), 5, "nonsecure", &callback, false));
    for (const bool asks : {true, false}) {
        const pid_t child = fork();
        if (child == 0) {
            const bool isServed = !asks || manager->Login(&callback, false);
            releaseSecurityManagerInterface(manager);
            std::_Exit(isServed ? 0 : 1);
        }
        int status = -1;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
        EXPECT_TRUE(manager->Login(&callback, false));
    }
    releaseSecurityManagerInterface(manager);
}

class ChangedFileTest : public WorkspaceTest, public testing::WithParamInterface<Lines> {};

TEST_P(ChangedFileTest, IsReadAsItIsOrRefused)
{
    for (const auto& [logsIn, mode] : {std::pair(true, "DELETE"), {false, "DELETE"}, {true, "WAL"}, {false, "WAL"}}) {
        MakeDatabase("security.db", SampleText("security.sql") + "COMMIT; PRAGMA journal_mode = " + mode + "; BEGIN;");
        const auto accessControl =
            ConnectedManager(SAMPLE_FOLDER "/archive.toml", "documents", "sqlite3://db=" + Path("security.db"));
        const auto answer = [&, byLogIn = logsIn]() -> std::string {
            try {
                return byLogIn ? accessControl->GetAccessControlFilter("hugo", "")
                               : accessControl->GetAccessControlFilter("hugo");
            } catch (const std::runtime_error& error) {
                return error.what();
            }
        };
        EXPECT_EQ(answer(), "department = ('Legal')");
        const Outcome changed =
            Run("fleet() { sqlite3 $1 \"UPDATE security_permission SET resource = 'Fleet' WHERE "
                "position = 1001\"; }; "
                "log() { { printf '%s\\n' 'PRAGMA journal_mode = WAL;' \"$@\" '.shell kill -9 $PPID' "
                "| sqlite3 security.db; } >log 2>&1 || true; }; " +
                GetParam().at(1));
        EXPECT_EQ(changed.status, 0);
        EXPECT_EQ(changed.errors, "");
        EXPECT_THAT(answer(), testing::ContainsRegex(GetParam().at(2)));
        EXPECT_THAT(answer(), testing::ContainsRegex(GetParam().at(2)));
        Run("rm -rf security.db*");
        MakeDatabase("new.db", SampleText("security.sql"));
        std::filesystem::rename(Path("new.db"), Path("security.db"));
        EXPECT_EQ(answer(), "department = ('Legal')");
        Run("rm -rf *.db*");
    }
}

INSTANTIATE_TEST_SUITE_P(OfSqlite, ChangedFileTest, testing::ValuesIn(CaseRows("changed_files.txt")), CaseName);

TEST(AllowedTextsTest, TheListingRefusesWhatARequestWould)
{
    const auto refusal = [](const auto& require) -> std::string {
        try {
            require();
            return "";
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    };
    struct Case {
        const char* variable; // its expression is [a-z]*
        const char* resource;
        std::string ofGrant;
        std::string ofAttribute;
    };
    const std::string resources = " holds a text that SECM_ALLOWED_RESOURCES does not allow";
    const std::string attributes = " holds a text that SECM_ALLOWED_ATTRIBUTES does not allow";
    for (const Case& row : std::vector<Case>{
             {"UNUSED", "a'b", "", ""},
             {"SECM_ALLOWED_RESOURCES", "ab", "", ""},
             {"SECM_ALLOWED_RESOURCES", "%my%", "", ""},
             {"SECM_ALLOWED_RESOURCES", nullptr, "", ""},
             {"SECM_ALLOWED_RESOURCES", "a'b", "the permission 'p' for the resource 'a'b'" + resources, ""},
             {"SECM_ALLOWED_ATTRIBUTES", "ab", "", ""},
             {"SECM_ALLOWED_ATTRIBUTES", "%my%", "", "the attribute 'p' with the value '%my%'" + attributes}}) {
        setenv(row.variable, "[a-z]*", 1);
        EXPECT_EQ(refusal([&] { requireSECM_AllowedGrant(PermissionBase("p", 1, row.resource, false)); }), row.ofGrant);
        EXPECT_EQ(refusal([&] { requireSECM_AllowedAttribute("p", row.resource != nullptr ? row.resource : ""); }),
                  row.ofAttribute);
        setenv(row.variable, "(", 1);
        EXPECT_THAT(refusal([&] { requireSECM_AllowedGrant(PermissionBase("p", 1, "%my%", false)); }) +
                        refusal([&] { requireSECM_AllowedAttribute("p", "v"); }),
                    testing::HasSubstr(std::string(row.variable) == "UNUSED" ? "" : " is no regular expression: "));
        unsetenv(row.variable);
    }
}

TEST(PermissionBaseTest, SurvivesSerialization)
{
    PermissionBase copy("other", 1, "other", false);
    for (const PermissionBase& permission :
         {PermissionBase("a:1", 4294967295, nullptr, true), PermissionBase("", 0, "", false)}) {
        ASSERT_TRUE(copy.deserialize(permission.serialize()));
        EXPECT_EQ(copy.serialize(), permission.serialize());
        EXPECT_TRUE(copy == permission && copy.value() == permission.value() &&
                    copy.IsConditional() == permission.IsConditional());
    }
    for (const std::string damaged :
         {"", "4:kept", "1:a1:x1:0", "1:a1:11:2", "1:a1:11:0x", "1:a10:42949672961:0", "9:a1:11:0", "1:a2:1x1:0",
          "1:a1:11:01:r1:s", "1:a1:11:03:rr", "1", ":a1:11:0", "1:a1:11:09:r"}) {
        EXPECT_FALSE(copy.deserialize(damaged)) << damaged;
    }
    EXPECT_STREQ(copy.name(), "");
}

} // namespace
