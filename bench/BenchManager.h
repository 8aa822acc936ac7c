// A manager made of a workload's configuration.
#pragma once

#include "SECM_AccessControl/SECM_AccessControlManager.h"
#include "bench/InMemorySecurity.h"
#include "bench/Workload.h"

#include <memory>

class BenchManager : public SECM_AccessControlManager {
public:
    /// With its user in memory. Not from two threads at once.
    explicit BenchManager(const Workload& workload);

private:
    InMemoryUser user;
    std::unique_ptr<InMemorySecurityManager> inMemory;
    InMemoryAdministration administration;
};
