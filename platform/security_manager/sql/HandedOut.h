// Owns the interfaces that a library hands out. One that a caller never gives back is freed with this object, when the
// library is unloaded.
#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

template <class Interface>
class HandedOut {
public:
    Interface* Keep(std::unique_ptr<Interface> handedOut)
    {
        Interface* key = handedOut.get();
        const std::lock_guard<std::mutex> lock(mutex);
        kept.emplace(key, std::move(handedOut));
        return key;
    }

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
