#include "bench/BenchManager.h"

#include "bench/ConfigurationFile.h"
#include "bench/CountedAllocation.h"

#include <array>

namespace secm::bench {

namespace {

// Its one user is always logged in. Answers for the permissions f01, f02 ... of a workload without a search.
class IndexedSecurityManager final : public testing::InMemorySecurityManager {
public:
    IndexedSecurityManager(testing::Users& known, testing::User& onlyUser) : InMemorySecurityManager(known)
    {
        LogIn(&onlyUser);
        for (const PermissionBase& permission : onlyUser.permissions) {
            if (permission.resource() != nullptr) {
                resourcesOfFields[FieldOf(permission.name())].emplace_back(permission.resource());
            }
        }
    }
    bool Login(SECM_CallBackInterface*, bool) override { return true; }
    bool IsLoggedIn(const char*) override { return true; }
    bool Logout() override { return true; }
    bool CheckPermission(const PermissionBase& sought) override
    {
        return resourcesOfFields[FieldOf(sought.name())].empty();
    }
    bool GetResources(const std::string& name, unsigned /*value*/, std::vector<std::string>& resources) override
    {
        const SecurityManagerAllocates counting;
        const std::vector<std::string>& found = resourcesOfFields[FieldOf(name.c_str())];
        resources.insert(resources.end(), found.begin(), found.end());
        return true;
    }

private:
    static std::size_t FieldOf(const char* permission)
    {
        return static_cast<std::size_t>(permission[1] - '0') * 10 + static_cast<std::size_t>(permission[2] - '0');
    }

    std::array<std::vector<std::string>, 100> resourcesOfFields; // by the field's number; none: held outright
};

// Knows one user.
class CountedAdministration final : public testing::InMemoryAdministration {
public:
    CountedAdministration(testing::Users& known, testing::User& onlyUser)
        : InMemoryAdministration(known), user(onlyUser)
    {
    }
    UserDetailsInterface* GetUserDetails(const char*, const char*) override { return &user; }
    PermissionListInterface* GetPermissionList(const char*, const char*) override
    {
        const SecurityManagerAllocates counting;
        return new testing::InMemoryPermissionList(user.permissions);
    }

private:
    testing::User& user;
};

const char* Configured(const Workload& workload)
{
    Configure(ConfigurationOf(workload));
    return workloadRepository;
}

} // namespace

BenchManager::BenchManager(const Workload& workload) : SECM_AccessControlManager(Configured(workload))
{
    testing::User& user = users[workload.name];
    user = testing::User("group", {{"own", "site0001"}}, PermissionsOf(workload));
    indexed = std::make_unique<IndexedSecurityManager>(users, user);
    counted = std::make_unique<CountedAdministration>(users, user);
    securityManager = indexed.get();
    adminInterface = counted.get();
}

} // namespace secm::bench
