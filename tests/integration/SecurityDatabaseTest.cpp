// Both roads to the security database, and what becomes of a request when the database breaks.
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
#include <memory>

namespace {

using SecurityDatabaseTest = EngineTest;

ON_BOTH_ENGINES(SecurityDatabaseTest);

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
    Write("archive.toml", SampleText("archive.toml"));
    setenv("CFG_REPOSITORY", Path("archive.toml").c_str(), 1);
    CFG_Factory::Reload();
    std::string repository = "documents";
    const std::unique_ptr<SECM_AccessControlInterface> accessControl(
        SECM_AccessControlInterface::CreateInstance(repository));
    ASSERT_TRUE(accessControl->InitSecurityConnection(connection.c_str(), 1));
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
