// Counts every allocation by operator new, those of the security manager also separately, and on demand the peak of
// held memory. Each thread has its own counts.
#pragma once

#include <cstddef>

namespace secm::bench {

struct AllocationCount {
    std::size_t allocations = 0;
    std::size_t bytes = 0;
};

AllocationCount AllAllocations();
AllocationCount AllocationsOfTheSecurityManager();

/// While it lives, its thread's allocations count as the security manager's.
class SecurityManagerAllocates {
public:
    SecurityManagerAllocates();
    ~SecurityManagerAllocates();
    SecurityManagerAllocates(const SecurityManagerAllocates&) = delete;
    SecurityManagerAllocates& operator=(const SecurityManagerAllocates&) = delete;

private:
    AllocationCount before;
};

/// Measures how much memory its thread holds. One at a time in a thread.
class PeakWatch {
public:
    PeakWatch();
    ~PeakWatch();
    PeakWatch(const PeakWatch&) = delete;
    PeakWatch& operator=(const PeakWatch&) = delete;

    /// The most bytes held at once since the construction, as the allocator rounds them up.
    std::size_t Bytes() const;
};

} // namespace secm::bench
