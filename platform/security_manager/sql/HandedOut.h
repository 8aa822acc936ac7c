// Owns the interfaces that a library hands out. An interface that is never released is freed with this object, when the
// library is unloaded.
#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace secm::platform {

template <class Interface>
class HandedOut {
public:
    /// Takes ownership. Any thread may call this and Release.
    Interface* Keep(std::unique_ptr<Interface> handedOut)
    {
        Interface* key = handedOut.get();
        const std::lock_guard<std::mutex> lock(mutex);
        kept.emplace(key, std::move(handedOut));
        return key;
    }

    /// Destroys the interface; does nothing when `key` is none of those kept.
    void Release(Interface* key)
    {
        std::unique_ptr<Interface> released;
        const std::lock_guard<std::mutex> lock(mutex);
        if (const auto found = kept.find(key); found != kept.end()) {
            released = std::move(found->second);
            kept.erase(found);
        }
    }

private:
    std::mutex mutex;
    std::unordered_map<Interface*, std::unique_ptr<Interface>> kept;
};

} // namespace secm::platform
