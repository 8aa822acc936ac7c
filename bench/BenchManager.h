// A manager made of a workload's configuration, whose user stands in memory: a request costs the security manager
// little, and the same each time.
#pragma once

#include "SECM_AccessControl/SECM_AccessControlManager.h"
#include "bench/Workload.h"
#include "testing/InMemorySecurity.h"

#include <memory>

namespace secm::bench {

class BenchManager : public SECM_AccessControlManager {
public:
    /// The user has the workload's name. Not from two threads at once.
    explicit BenchManager(const Workload& workload);

private:
    testing::Users users;
    std::unique_ptr<testing::InMemorySecurityManager> indexed;
    std::unique_ptr<testing::InMemoryAdministration> counted;
};

} // namespace secm::bench
