// Defines malloc, calloc and realloc, which replace the C library's in all libraries that the program loads.
#include "tests/faults/FailingMalloc.h"

#include <execinfo.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <mutex>
#include <string_view>
#include <unordered_set>

// The C library's own functions.
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_realloc(void* memory, std::size_t size);

namespace {

std::atomic<unsigned long> calls = 0;
std::atomic<unsigned long> firstFailure = 0;
std::atomic<unsigned long> lastFailure = 0;

std::atomic<bool> printsPlaces = false;
thread_local bool isPrinting = false; // printing allocates too

void PrintWhenNew(unsigned long call)
{
    static std::mutex mutex;
    static std::unordered_set<std::size_t> stacks;
    std::array<void*, 24> frames;
    isPrinting = true;
    const std::lock_guard<std::mutex> lock(mutex);
    const std::string_view stack(reinterpret_cast<const char*>(frames.data()),
                                 static_cast<std::size_t>(backtrace(frames.data(), frames.size())) * sizeof(void*));
    if (stacks.insert(std::hash<std::string_view>()(stack)).second) {
        std::printf("%lu\n", call);
    }
    isPrinting = false;
}

bool MustFail()
{
    if (isPrinting) {
        return false;
    }
    const unsigned long call = ++calls;
    if (printsPlaces) {
        PrintWhenNew(call);
    }
    const bool mustFail = call >= firstFailure && call <= lastFailure;
    if (mustFail) {
        errno = ENOMEM;
    }
    return mustFail;
}

} // namespace

void FailMalloc(unsigned long first, bool isLasting)
{
    lastFailure = 0; // none fails while the others change
    calls = 0;
    firstFailure = first;
    lastFailure = isLasting && first != 0 ? ~0UL : first;
}

unsigned long MallocCalls()
{
    return calls;
}

void PrintMallocPlaces()
{
    FailMalloc(0, false);
    printsPlaces = true;
}

extern "C" {

__attribute__((visibility("default"))) void* malloc(std::size_t size)
{
    return MustFail() ? nullptr : __libc_malloc(size);
}

__attribute__((visibility("default"))) void* calloc(std::size_t count, std::size_t size)
{
    return MustFail() ? nullptr : __libc_calloc(count, size);
}

__attribute__((visibility("default"))) void* realloc(void* memory, std::size_t size)
{
    return MustFail() ? nullptr : __libc_realloc(memory, size);
}

} // extern "C"
