#include "bench/CountedAllocation.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace secm::bench {

namespace {

// Per thread: a shared counter would slow down what it counts.
thread_local AllocationCount all;
thread_local AllocationCount securityManagers;

// Counted only while a PeakWatch lives, because asking the allocator takes time.
thread_local bool isHeldWatched = false;
thread_local std::ptrdiff_t held = 0; // negative when more was freed than allocated since then
thread_local std::ptrdiff_t mostHeld = 0;

void CountAllocation(std::size_t size)
{
    ++all.allocations;
    all.bytes += size;
}

void CountHeld(void* memory)
{
    if (isHeldWatched) {
        held += static_cast<std::ptrdiff_t>(malloc_usable_size(memory));
        mostHeld = std::max(mostHeld, held);
    }
}

void Free(void* memory)
{
    if (isHeldWatched) {
        held -= static_cast<std::ptrdiff_t>(malloc_usable_size(memory));
    }
    std::free(memory);
}

} // namespace

AllocationCount AllAllocations()
{
    return all;
}

AllocationCount AllocationsOfTheSecurityManager()
{
    return securityManagers;
}

SecurityManagerAllocates::SecurityManagerAllocates() : before(all) {}

SecurityManagerAllocates::~SecurityManagerAllocates()
{
    securityManagers.allocations += all.allocations - before.allocations;
    securityManagers.bytes += all.bytes - before.bytes;
}

PeakWatch::PeakWatch()
{
    held = 0;
    mostHeld = 0;
    isHeldWatched = true;
}

PeakWatch::~PeakWatch()
{
    isHeldWatched = false;
}

std::size_t PeakWatch::Bytes() const
{
    return static_cast<std::size_t>(mostHeld);
}

} // namespace secm::bench

void* operator new(std::size_t size)
{
    secm::bench::CountAllocation(size);
    void* memory = std::malloc(size != 0 ? size : 1);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    secm::bench::CountHeld(memory);
    return memory;
}

void operator delete(void* memory) noexcept
{
    secm::bench::Free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    secm::bench::Free(memory);
}
