// The administration interface on the security database: reads users by name, with the same statement as a log-in.
#include "platform/security_manager/SMADM_Interface.h"

#include "platform/KeptUntilUnload.h"
#include "platform/security_manager/PermissionListInterface.h"
#include "platform/security_manager/SECM_Constants.h"
#include "platform/security_manager/sql/HandedOut.h"
#include "platform/security_manager/sql/SecurityDatabase.h"

#include <fmt/format.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace secm::platform {
namespace {

class SqlPermissionList final : public PermissionListInterface {
public:
    explicit SqlPermissionList(std::vector<PermissionBase> granted) : permissions(std::move(granted)) {}
    const std::vector<PermissionBase>* GetPermissions() override { return &permissions; }

private:
    std::vector<PermissionBase> permissions;
};

std::string TextOrEmpty(const char* text)
{
    return text != nullptr ? text : "";
}

class SqlAdministration final : public SMADM_Interface {
public:
    bool Initialize(const char* connectionText, unsigned timeoutSeconds, const char* mode) override
    {
        Forget();
        database = SecurityDatabase::Open("SMADM_Interface::Initialize", connectionText, timeoutSeconds, mode);
        return database != nullptr;
    }

    UserDetailsInterface* GetUserDetails(const char* /*domain*/, const char* userName) override
    {
        Forget();
        const std::string name = TextOrEmpty(userName);
        auto found = Connected("GetUserDetails").ReadUser<PermissionsInOrder>("SMADM_Interface::GetUserDetails", name);
        if (!found) {
            return nullptr;
        }
        readWithUser = {name, found->user.groupName, found->permissions.Take()};
        return &details.emplace(std::move(found->user));
    }

    PermissionListInterface* GetPermissionList(const char* group, const char* user) override
    {
        auto read = std::exchange(readWithUser, std::nullopt);
        const std::string groupName = TextOrEmpty(group);
        const std::string userName = TextOrEmpty(user);
        if (read && read->userName == userName && read->groupName == groupName) {
            return new SqlPermissionList(std::move(read->permissions));
        }
        return new SqlPermissionList(
            Connected("GetPermissionList").ReadPermissions("SMADM_Interface::GetPermissionList", groupName, userName));
    }

private:
    // The permissions that were read with the last user. They answer only the next question; later questions read the
    // database.
    struct ReadWithUser {
        std::string userName;
        std::string groupName;
        std::vector<PermissionBase> permissions;
    };

    void Forget()
    {
        details.reset();
        readWithUser.reset();
    }

    SecurityDatabase& Connected(const char* operation)
    {
        if (database == nullptr) {
            throw std::runtime_error(fmt::format("SMADM_Interface::{}: not initialized", operation));
        }
        return *database;
    }

    std::unique_ptr<SecurityDatabase> database;
    std::optional<SqlUserDetails> details; // of the last user
    std::optional<ReadWithUser> readWithUser;
};

HandedOut<SMADM_Interface>& Administrations()
{
    static auto& administrations = KeptUntilUnload<HandedOut<SMADM_Interface>>();
    return administrations;
}

} // namespace
} // namespace secm::platform

SMADM_Interface* getSECM_Interface(const char* /*applicationName*/, unsigned interfaceVersion)
{
    using namespace secm::platform;
    return interfaceVersion == administrationVersion ? Administrations().Keep(std::make_unique<SqlAdministration>())
                                                     : nullptr;
}

void releaseSECM_Interface(SMADM_Interface* administration)
{
    secm::platform::Administrations().Release(administration);
}
