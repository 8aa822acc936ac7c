// Objects that are destroyed when their library is unloaded, and never by exit(): exit() destroys static objects while
// the host's other threads still use them.
#pragma once

#include <memory>
#include <utility>

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

/// Makes an object of `arguments` and registers it with DestroyWhenUnloaded. Throws std::bad_alloc and what the
/// object's constructor throws.
template <class Object, class... Arguments>
Object& KeptUntilUnload(Arguments&&... arguments)
{
    auto object = std::make_unique<Object>(std::forward<Arguments>(arguments)...);
    DestroyWhenUnloaded(object.get(), [](void* kept) { delete static_cast<Object*>(kept); });
    return *object.release();
}

} // namespace secm::platform
