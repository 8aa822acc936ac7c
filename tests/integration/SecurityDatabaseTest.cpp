// Both roads to the security database, and what becomes of a request when the database breaks.
#include "SECM_AccessControl/AccessControlCallback.h"
#include "SECM_AccessControl/SECM_AccessControlInterface.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/security_manager/PermissionBase.h"
#include "platform/security_manager/SecurityManagerInterface.h"
#include "tests/Cases.h"
#include "tests/integration/Workspace.h"

#include <cstdlib>
#include <memory>

namespace {

class SecurityDatabaseTest : public WorkspaceTest {
protected:
    SecurityDatabaseTest()
    {
        MakeDatabase("security.db",
                     SampleText("security.sql") +
                         "INSERT INTO security_user VALUES ('', ''), ('o''br\xC3\xA9', '');"
                         "INSERT INTO security_permission VALUES (1, 'group', '', 'archive.kind', 1, 'no group', 0),"
                         " (2, 'user', 'o''br\xC3\xA9', 'archive.kind', 4294967295, '', 1), (3, 'group', 'board', "
                         "'archive.kind', 1, 'x', 0);");
        connection = "sqlite3://db=" + Path("security.db");
    }

    std::string connection;
};

TEST_F(SecurityDatabaseTest, LogsInWhoeverTheCallbackNames)
{
    EXPECT_EQ(getSecurityManagerInterface("Test", 1), nullptr);
    SecurityManagerInterface* manager = getSecurityManagerInterface("Test", 0x11010A17);
    AccessControlCallback callback;
    EXPECT_THROW(manager->Login(&callback, false), std::runtime_error);
    EXPECT_FALSE(manager->Initialize(connection.c_str(), 5, "secure", &callback, false));
    ASSERT_TRUE(manager->Initialize(connection.c_str(), 5, "nonsecure", &callback, false));
    for (const Lines& row : CaseRows("logins.txt")) {
        callback.userName = row.at(0);
        callback.group = callback.secondGroup = row.at(1);
        std::string granted = manager->Login(&callback, false) ? "yes" : "no";
        std::vector<std::string> resources;
        EXPECT_EQ(manager->GetResources(row.at(2), 1, resources), granted == "yes");
        EXPECT_EQ(manager->IsLoggedIn("brantor"), granted == "yes");
        EXPECT_FALSE(manager->IsLoggedIn("other"));
        EXPECT_EQ(manager->GetUserDetails() != nullptr, granted == "yes");
        for (const std::string& resource : resources) {
            granted += " [" + resource + "]";
        }
        EXPECT_EQ(granted, row.at(3)) << row.at(0) << " in " << row.at(1);
    }
    callback.userName = "mira";
    manager->Login(&callback, false);
    EXPECT_TRUE(manager->CheckPermission({"archive.kind", 1, nullptr, true}));
    EXPECT_FALSE(manager->CheckPermission({"archive.kind", 2, nullptr, true}));
    EXPECT_TRUE(manager->CheckPermission({"archive.department", 2, "Finance", false}));
    EXPECT_FALSE(manager->CheckPermission({"archive.department", 2, "Crewing", false}));
    EXPECT_TRUE(manager->Logout());
    EXPECT_FALSE(manager->IsLoggedIn("brantor"));
    callback.userName = std::string("mira\0x", 6);
    EXPECT_THROW(manager->Login(&callback, false), std::runtime_error);
    releaseSecurityManagerInterface(manager);
}

TEST_F(SecurityDatabaseTest, ARequestThatMeetsABrokenDatabaseThrowsAndTheNextIsServed)
{
    Write("archive.toml", SampleText("archive.toml"));
    setenv("CFG_REPOSITORY", Path("archive.toml").c_str(), 1);
    CFG_Factory::Reload();
    std::string repository = "documents";
    const std::unique_ptr<SECM_AccessControlInterface> accessControl(
        SECM_AccessControlInterface::CreateInstance(repository));
    ASSERT_TRUE(accessControl->InitSecurityConnection(connection.c_str(), 1));
    for (const char* breakage :
         {"ALTER TABLE security_attribute RENAME TO gone", "ALTER TABLE security_permission RENAME TO gone"}) {
        EXPECT_EQ(accessControl->GetAccessControlFilter("hugo", ""), "department = ('Legal')");
        EXPECT_EQ(accessControl->GetAccessControlFilter("hugo"), "department = ('Legal')");
        Run("cp security.db whole.db && sqlite3 security.db '" + std::string(breakage) + "'");
        EXPECT_THROW(accessControl->GetAccessControlFilter("hugo", ""), std::runtime_error);
        EXPECT_THROW(accessControl->GetAccessControlFilter("hugo"), std::runtime_error);
        EXPECT_THROW(accessControl->GetAccessControlFilter("nobody", ""), std::runtime_error);
        Run("mv whole.db security.db");
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
         {"", "4:kept", "1:a1:x1:0", "1:a1:11:2", "1:a1:11:0x", "1:a10:42949672961:0", "9:a1:11:0", "1:a1:11:09:r"}) {
        EXPECT_FALSE(copy.deserialize(damaged)) << damaged;
    }
    EXPECT_STREQ(copy.name(), "");
}

} // namespace
