#include "bench/BenchManager.h"

#include "bench/ConfigurationFile.h"

namespace {

const char* Configured(const Workload& workload)
{
    Configure(ConfigurationOf(workload));
    return workloadRepository;
}

} // namespace

BenchManager::BenchManager(const Workload& workload)
    : SECM_AccessControlManager(Configured(workload)), administration(user)
{
    user.permissions = PermissionsOf(workload);
    inMemory = std::make_unique<InMemorySecurityManager>(user);
    securityManager = inMemory.get();
    adminInterface = &administration;
}
