// Tells exit() from dlclose() by their order, which is opposite:
// - exit() first calls what was registered by atexit(), the last one first. The C library registered the end of the
//   dynamic linker before main began, so that comes last, and only then the libraries' destructor functions are called.
// - dlclose() calls the library's destructor functions, the last one first. The first of them is the compiler's own,
//   which calls what this library has registered by atexit().
// Whichever is called first therefore decides. Each library has its own copy of all this.
#include "platform/KeptUntilUnload.h"

#include <dlfcn.h>

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <new>

namespace {

enum class State { inUse, exiting, unloading };

struct Kept {
    void* object;
    void (*destroy)(void*);
    Kept* earlier;
};

// None of them has a destructor: they are used until the process is gone.
constinit std::atomic<State> state{State::inUse};
constinit std::mutex mutex;
constinit Kept* last = nullptr;

bool IsFirst(State wanted)
{
    State found = State::inUse;
    return state.compare_exchange_strong(found, wanted);
}

void AtExit()
{
    if (!IsFirst(State::exiting)) {
        return;
    }
    // A host may unload the module from a handler of its own that comes later. The code has to stay as well then: what
    // is kept would be out of reach without it, and threads of ours would return to nowhere.
    Dl_info self{};
    if (dladdr(&state, &self) != 0) {
        dlopen(self.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
    }
}

[[gnu::destructor]] void AtUnload()
{
    if (!IsFirst(State::unloading)) {
        return;
    }
    while (last != nullptr) {
        const std::unique_ptr<Kept> kept(last);
        last = kept->earlier;
        kept->destroy(kept->object);
    }
}

} // namespace

bool secm::platform::IsExiting()
{
    return state == State::exiting;
}

void secm::platform::DestroyWhenUnloaded(void* object, void (*destroy)(void*))
{
    static const bool isRegistered = [] {
        if (std::atexit(AtExit) != 0) {
            throw std::bad_alloc();
        }
        return true;
    }();
    static_cast<void>(isRegistered);
    auto kept = std::make_unique<Kept>(Kept{object, destroy, nullptr});
    const std::lock_guard<std::mutex> lock(mutex);
    kept->earlier = last;
    last = kept.release();
}
