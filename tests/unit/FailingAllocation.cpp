#include "tests/unit/FailingAllocation.h"

#include <cstdlib>
#include <new>
#include <utility>

namespace {

long remaining = 0;
bool hasFailed = false;

} // namespace

void FailAllocation(long count)
{
    remaining = count;
    hasFailed = false;
}

bool AllocationHasFailed()
{
    return hasFailed;
}

AllocationsSucceed::AllocationsSucceed() : paused(std::exchange(remaining, 0)) {}

AllocationsSucceed::~AllocationsSucceed()
{
    remaining = paused;
}

void* operator new(std::size_t size)
{
    if (remaining > 0 && --remaining == 0) {
        hasFailed = true;
        throw std::bad_alloc();
    }
    if (void* memory = std::malloc(size != 0 ? size : 1)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}
