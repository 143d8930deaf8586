#include "core/ApplicationCalls.h"

#include "platform/Immortal.h"
#include "platform/Mutex.h"

#include <algorithm>
#include <condition_variable>
#include <cstdlib>
#include <thread>
#include <vector>

namespace velmora {

namespace {

using Deadline = std::chrono::steady_clock::time_point;

class Gate {
public:
    static Gate& instance() {
        static platform::Immortal<Gate> gate;
        [[maybe_unused]] static const int registered =
            std::atexit([] { gate->close(std::chrono::steady_clock::now() + std::chrono::seconds(1)); });
        return *gate;
    }

    [[nodiscard]] bool isOpen() {
        const platform::MutexLock lock(mutex_);
        return isOpen_;
    }

    void open() {
        const platform::MutexLock lock(mutex_);
        isOpen_ = true;
    }

    void close(Deadline deadline) {
        const platform::MutexLock lock(mutex_);
        isOpen_ = false;
        while (isBusyElsewhere() && changed_.wait_until(mutex_, deadline) == std::cv_status::no_timeout)
            continue;
    }

    [[nodiscard]] bool begin() {
        const platform::MutexLock lock(mutex_);
        if (isOpen_) running_.push_back(std::this_thread::get_id());
        return isOpen_;
    }

    void end() {
        const platform::MutexLock lock(mutex_);
        running_.erase(std::find(running_.begin(), running_.end(), std::this_thread::get_id()));
        if (!isOpen_) changed_.notify_all();
    }

private:
    [[nodiscard]] bool isBusyElsewhere() const VELMORA_REQUIRES(mutex_) {
        return std::any_of(running_.begin(), running_.end(),
                           [](const auto& thread) { return thread != std::this_thread::get_id(); });
    }

    platform::Mutex mutex_;
    std::condition_variable_any changed_;
    bool isOpen_ VELMORA_GUARDED_BY(mutex_) = true;
    /// One of each call; a callback may run an event loop, and more callbacks in it.
    std::vector<std::thread::id> running_ VELMORA_GUARDED_BY(mutex_);
};

}  // namespace

bool ApplicationCalls::areOpen() noexcept { return Gate::instance().isOpen(); }

void ApplicationCalls::open() { Gate::instance().open(); }

void ApplicationCalls::close(Deadline deadline) noexcept { Gate::instance().close(deadline); }

bool ApplicationCalls::begin() noexcept { return Gate::instance().begin(); }

void ApplicationCalls::end() noexcept { Gate::instance().end(); }

}  // namespace velmora
