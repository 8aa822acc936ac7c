// Every allocation by operator new is counted, those that the security manager makes once more, and on demand how much
// is held at once. Each thread has counts of its own.
#pragma once

#include <cstddef>

struct AllocationCount {
    std::size_t allocations = 0;
    std::size_t bytes = 0;
};

AllocationCount AllAllocations();
AllocationCount AllocationsOfTheSecurityManager();

/// What is allocated while it lives is the security manager's.
class SecurityManagerAllocates {
public:
    SecurityManagerAllocates();
    ~SecurityManagerAllocates();
    SecurityManagerAllocates(const SecurityManagerAllocates&) = delete;
    SecurityManagerAllocates& operator=(const SecurityManagerAllocates&) = delete;

private:
    AllocationCount before;
};

/// Watches how much its thread holds, while it lives; one at a time.
class PeakWatch {
public:
    PeakWatch();
    ~PeakWatch();
    PeakWatch(const PeakWatch&) = delete;
    PeakWatch& operator=(const PeakWatch&) = delete;

    /// The most bytes that were held at once, beyond those at the beginning, as the allocator rounds them up.
    std::size_t Bytes() const;
};
