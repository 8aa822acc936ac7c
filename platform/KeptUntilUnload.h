// Objects that are destroyed when their library is unloaded, and never by exit(): exit() destroys static objects while
// the host's other threads still use them.
#pragma once

#include <memory>

namespace secm::platform {

/// Calls `destroy(object)` when the library that contains this code is unloaded, on the thread that unloads it. The
/// last registered object is destroyed first. At process exit the object stays reachable until the process ends. Any
/// thread may call this. Throws std::bad_alloc; nothing is registered then.
///
/// When another library's constructor uses this library before `main` begins, exit() cannot be told from unloading:
/// exit() destroys the object.
void DestroyWhenUnloaded(void* object, void (*destroy)(void*));

/// Whether exit() has begun. False before the first registration in this library.
bool IsExiting();

/// A new object for DestroyWhenUnloaded. Throws std::bad_alloc and what the object's constructor throws.
template <class Object>
Object& KeptUntilUnload()
{
    auto object = std::make_unique<Object>();
    DestroyWhenUnloaded(object.get(), [](void* kept) { delete static_cast<Object*>(kept); });
    return *object.release();
}

} // namespace secm::platform
