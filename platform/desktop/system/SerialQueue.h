#pragma once

#include "platform/Mutex.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <optional>
#include <thread>

namespace velmora::platform {

/// Runs work one piece at a time, in the order in which it was given, on a thread of its own.
class SerialQueue {
public:
    using Work = std::function<void()>;
    using Deadline = std::chrono::steady_clock::time_point;

    /// Lives as long as the process; its thread starts with the first work.
    SerialQueue() = default;
    ~SerialQueue() = default;
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    /// Any thread. What the work throws is logged. Where the machine has no thread left to start, the work
    /// runs on the calling thread.
    void add(Work work);

    /// For the end of the process: what waits never runs, and what runs is waited for, but no longer than
    /// until `deadline`, nor by itself.
    void leave(Deadline deadline);

private:
    [[nodiscard]] bool startThread() VELMORA_REQUIRES(mutex_);
    void run();
    void runWaiting() VELMORA_REQUIRES(mutex_);

    Mutex mutex_;
    std::condition_variable_any changed_;
    std::deque<Work> waiting_ VELMORA_GUARDED_BY(mutex_);
    std::optional<std::thread::id> running_ VELMORA_GUARDED_BY(mutex_);
    bool hasThread_ VELMORA_GUARDED_BY(mutex_) = false;
    bool leaving_ VELMORA_GUARDED_BY(mutex_) = false;
};

}  // namespace velmora::platform
