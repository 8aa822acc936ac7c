// Runs every benchmark in the same way, so that all report the same counters.
#pragma once

#include "bench/CountedAllocation.h"
#include "bench/Workload.h"

#include <benchmark/benchmark.h>

#include <string>
#include <type_traits>

namespace secm::bench {

/// Times `operation` together with the destruction of its result. Counters, each for one operation: "allocations" and
/// their "bytes"; "allocations of the security manager", when that is in memory; "peak", the most bytes held at once;
/// "result", the length of a text result in bytes.
template <class Operation>
void Measure(benchmark::State& state, Operation operation)
{
    const auto first = operation(); // not measured: it sets things up
    if constexpr (std::is_same_v<decltype(first), const std::string>) {
        state.counters["result"] = static_cast<double>(first.size());
    }
    {
        const PeakWatch watch;
        operation();
        state.counters["peak"] = static_cast<double>(watch.Bytes());
    }
    const AllocationCount before = AllAllocations();
    const AllocationCount beforeOfSecurity = AllocationsOfTheSecurityManager();
    for (auto step : state) {
        auto result = operation();
        benchmark::DoNotOptimize(result);
    }
    const auto average = [](std::size_t count) {
        return benchmark::Counter(static_cast<double>(count), benchmark::Counter::kAvgIterations);
    };
    const AllocationCount after = AllAllocations();
    const AllocationCount afterOfSecurity = AllocationsOfTheSecurityManager();
    state.counters["allocations"] = average(after.allocations - before.allocations);
    state.counters["bytes"] = average(after.bytes - before.bytes);
    state.counters["allocations of the security manager"] =
        average(afterOfSecurity.allocations - beforeOfSecurity.allocations);
}

/// Names the benchmark NAME/WORKLOAD.
inline benchmark::internal::Benchmark*
Register(const std::string& name, void (*body)(benchmark::State&, const Workload&), const Workload& workload)
{
    return benchmark::RegisterBenchmark((name + "/" + workload.name).c_str(),
                                        [body, workload](benchmark::State& state) { body(state, workload); });
}

} // namespace secm::bench
