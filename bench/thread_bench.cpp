// Concurrent requests. Each thread has its own manager.
#include "bench/BenchManager.h"
#include "bench/Measure.h"

#include <mutex>
#include <optional>

namespace secm::bench {

namespace {

void Threads(benchmark::State& state, const Workload& workload)
{
    static std::mutex making;
    std::optional<BenchManager> manager;
    {
        const std::lock_guard<std::mutex> lock(making);
        manager.emplace(workload);
    }
    SECM_AccessControlInterface& accessControl = *manager;
    const std::string user = workload.name;
    const std::string address = workloadAddress;
    Measure(state, [&] { return accessControl.GetAccessControlFilter(user, address); });
    state.SetItemsProcessed(state.iterations());
}

const bool registered = [] {
    for (const int count : {1, 2}) {
        benchmark::RegisterBenchmark(("Threads/" + std::to_string(count)).c_str(),
                                     [](benchmark::State& state) { Threads(state, typicalWorkload); })
            ->Threads(count)
            ->UseRealTime();
    }
    return true;
}();

} // namespace

} // namespace secm::bench
