// Hands items from one thread to another, at most so many at a time.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <utility>

namespace secm::acfilter {

/// One thread calls Push and End, another Pop and Cancel.
template <class Item>
class BoundedQueue {
public:
    explicit BoundedQueue(std::size_t capacity) : most(capacity) {}

    /// Waits for room. False: the other thread takes no more.
    bool Push(Item item)
    {
        std::unique_lock<std::mutex> lock(mutex);
        if (items.size() >=
            most) { // until there is much room: waking up for each item would take longer than most work
            changed.wait(lock, [this] { return items.size() <= most / 2 || isCancelled; });
        }
        if (isCancelled) {
            return false;
        }
        items.push_back(std::move(item));
        if (items.size() == 1) {
            changed.notify_all();
        }
        return true;
    }

    /// No item follows. `exception` is why, or null.
    void End(std::exception_ptr exception)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        hasEnded = true;
        failure = std::move(exception);
        changed.notify_all();
    }

    /// Waits for an item. No value: there are no more. Throws the exception of End behind the last item.
    std::optional<Item> Pop()
    {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [this] { return !items.empty() || hasEnded; });
        if (items.empty()) {
            if (failure) {
                std::rethrow_exception(failure);
            }
            return std::nullopt;
        }
        Item item = std::move(items.front());
        items.pop_front();
        if (items.size() == most / 2) {
            changed.notify_all();
        }
        return item;
    }

    void Cancel()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isCancelled = true;
        changed.notify_all();
    }

private:
    const std::size_t most;
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Item> items;
    std::exception_ptr failure;
    bool hasEnded = false;
    bool isCancelled = false;
};

} // namespace secm::acfilter
