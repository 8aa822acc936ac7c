// What a library hands out, or uses on any thread, must outlive the process's exit and must not outlive the library.
// Static objects with destructors cannot do that: exit() destroys them while the host's other threads run on.
#pragma once

#include <memory>

namespace secm::platform {

/// Has `destroy(object)` called when the library that holds this code is unloaded (the last registered first), on the
/// thread that unloads it, and never at process exit: the object then stays reachable until the process is gone. Any
/// thread may call it. Throws std::bad_alloc, and has registered nothing then.
///
/// Out of reach is only a library that is used before `main` begins, by the constructor of another one: exit() and
/// unloading look the same to it, and exit() destroys.
void DestroyWhenUnloaded(void* object, void (*destroy)(void*));

/// Whether exit() has begun, so far as this library has been told: false before the first registration.
bool IsExiting();

/// A new object that is kept so.
template <class Object>
Object& KeptUntilUnload()
{
    auto object = std::make_unique<Object>();
    DestroyWhenUnloaded(object.get(), [](void* kept) { delete static_cast<Object*>(kept); });
    return *object.release();
}

} // namespace secm::platform
