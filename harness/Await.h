#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <vector>

namespace velmora::test {

/// Collects what callbacks bring, from any thread, and waits for it with a bound.
template <class T>
class Await {
public:
    void add(T value) {
        const std::lock_guard lock(mutex_);
        values_.push_back(std::move(value));
        changed_.notify_all();
    }

    /// Whether so many came in time.
    [[nodiscard]] bool count(std::size_t wanted, std::chrono::seconds most = std::chrono::seconds(60)) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, most, [&] { return values_.size() >= wanted; });
    }

    [[nodiscard]] std::vector<T> values() const {
        const std::lock_guard lock(mutex_);
        return values_;
    }

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<T> values_;
};

}  // namespace velmora::test
