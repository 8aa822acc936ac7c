// Tells exit() from dlclose() by which of the two handlers is called first:
// - exit() calls what was registered with atexit(), the last one first. The dynamic linker registered its function
//   before main began, so that comes last, and it calls the libraries' destructor functions. So AtExit is called first.
// - dlclose() calls the library's destructor functions, the last one first. The compiler's own comes last, and it calls
//   what the library registered with atexit(). So AtUnload is called first.
// Each library has its own copy of this state.
#include "platform/KeptUntilUnload.h"

#include <dlfcn.h>

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <new>

namespace secm::platform {
namespace {

enum class State { inUse, exiting, unloading };

struct Kept {
    void* object;
    void (*destroy)(void*);
    Kept* earlier;
};

// None of these has a destructor: threads use them until the process ends.
constinit std::atomic<State> state{State::inUse};
constinit std::mutex mutex;
constinit Kept* last = nullptr;

// False when the other handler was called before.
bool Enter(State next)
{
    State found = State::inUse;
    return state.compare_exchange_strong(found, next);
}

void AtExit()
{
    if (!Enter(State::exiting)) {
        return;
    }
    // A later exit handler of the host may unload the module. The library must stay loaded: our threads still run its
    // code, and the kept objects would be leaks.
    Dl_info self{};
    if (dladdr(&state, &self) != 0) {
        dlopen(self.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
    }
}

[[gnu::destructor]] void AtUnload()
{
    if (!Enter(State::unloading)) {
        return;
    }
    while (last != nullptr) {
        const std::unique_ptr<Kept> kept(last);
        last = kept->earlier;
        kept->destroy(kept->object);
    }
}

} // namespace

bool IsExiting()
{
    return state == State::exiting;
}

void DestroyWhenUnloaded(void* object, void (*destroy)(void*))
{
    [[maybe_unused]] static const bool isRegistered = [] {
        if (std::atexit(AtExit) != 0) {
            throw std::bad_alloc();
        }
        return true;
    }();
    auto kept = std::make_unique<Kept>(Kept{object, destroy, nullptr});
    const std::lock_guard<std::mutex> lock(mutex);
    kept->earlier = last;
    last = kept.release();
}

} // namespace secm::platform
