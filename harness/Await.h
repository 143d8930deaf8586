#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
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

/// Looks until it is so; false when that takes too long. For what no callback tells.
template <class Condition>
[[nodiscard]] bool becomes(const Condition& condition, std::chrono::seconds most = std::chrono::seconds(60)) {
    const auto end = std::chrono::steady_clock::now() + most;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

}  // namespace velmora::test
