// A host that has logged its users in itself: it passes its session to the module as a security manager and asks for
// the session's filter. This needs neither a connection nor a security database. Usage: own_login REPOSITORY
// DEPARTMENT...
#include "SECM_AccessControl/SECM_AccessControlInterface.h"
#include "platform/security_manager/PermissionBase.h"
#include "platform/security_manager/SecurityManagerInterface.h"
#include "platform/security_manager/UserDetailsInterface.h"

#include <iostream>
#include <memory>
#include <stdexcept>
#include <utility>

namespace {

// The user of one session, who is restricted to departments.
class Session : public SecurityManagerInterface, public UserDetailsInterface {
public:
    explicit Session(std::vector<std::string> ownDepartments) : departments(std::move(ownDepartments)) {}

    // The module calls these only on a security manager that it connected itself.
    bool Initialize(const char*, unsigned, const char*, SECM_CallBackInterface*, bool) override { return false; }
    bool Login(SECM_CallBackInterface*, bool) override { return false; }
    bool IsLoggedIn(const char*) override { return false; }
    bool Logout() override { return false; }

    bool CheckPermission(const PermissionBase& sought) override { return sought.name() != restricted; }

    bool GetResources(const std::string& name, unsigned /*value*/, std::vector<std::string>& resources) override
    {
        if (name != restricted) {
            return false; // unknown: the module then hides everything
        }
        resources.insert(resources.end(), departments.begin(), departments.end());
        return true;
    }

    UserDetailsInterface* GetUserDetails() override { return this; }
    bool GetGroupName(std::string&) override { return false; }
    const char* GetAttribute(const char*) override { return nullptr; }

private:
    const std::string restricted = "archive.department";
    std::vector<std::string> departments;
};

} // namespace

int main(int argc, char** argv)
try {
    if (argc < 2) {
        throw std::runtime_error("usage: own_login REPOSITORY DEPARTMENT...");
    }
    std::string repository = argv[1];
    const std::unique_ptr<SECM_AccessControlInterface> accessControl(
        SECM_AccessControlInterface::CreateInstance(repository));
    const std::unique_ptr<SecurityManagerInterface> session =
        std::make_unique<Session>(std::vector<std::string>(argv + 2, argv + argc));
    std::cout << accessControl->GetAccessControlFilter(session.get()) << "\n";
    return dynamic_cast<Session*>(session.get()) != nullptr ? 0 : 1; // run-time type information works across libraries
} catch (const std::exception& error) {
    std::cerr << "own_login: " << error.what() << "\n";
    return 1;
}
