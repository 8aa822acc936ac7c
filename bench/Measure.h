// How every benchmark is run, so that all of them tell the same figures.
#pragma once

#include "bench/CountedAllocation.h"
#include "bench/Workload.h"

#include <benchmark/benchmark.h>

#include <string>
#include <type_traits>

/// Times `operation`, the destruction of its result included. Counters, each of one operation: "allocations" and their
/// "bytes", the "allocations of the security manager" among them where it is in memory, and "peak", the most bytes that
/// it held at once, and "result", the bytes of a text that it gives.
template <class Operation>
void Measure(benchmark::State& state, Operation operation)
{
    const auto first = operation(); // what is set up by a first call is not what a call costs
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

/// As NAME/WORKLOAD.
inline benchmark::internal::Benchmark*
Register(const std::string& name, void (*body)(benchmark::State&, const Workload&), const Workload& workload)
{
    return benchmark::RegisterBenchmark((name + "/" + workload.name).c_str(),
                                        [body, workload](benchmark::State& state) { body(state, workload); });
}
