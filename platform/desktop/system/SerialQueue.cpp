#include "platform/desktop/system/SerialQueue.h"

#include "platform/CallOut.h"
#include "platform/desktop/system/DetachedThread.h"

#include <utility>

namespace velmora::platform {

void SerialQueue::add(Work work) {
    {
        const MutexLock lock(mutex_);
        waiting_.push_back(std::move(work));
        if (!startThread()) return runWaiting();
        // Whoever runs work looks for more by itself.
        if (running_) return;
    }
    changed_.notify_all();
}

void SerialQueue::leave(Deadline deadline) {
    const MutexLock lock(mutex_);
    leaving_ = true;
    const auto isBusy = [this]() VELMORA_REQUIRES(mutex_) {
        return running_ && running_ != std::this_thread::get_id();
    };
    while (isBusy() && changed_.wait_until(mutex_, deadline) == std::cv_status::no_timeout) continue;
}

bool SerialQueue::startThread() {
    if (!hasThread_) hasThread_ = startDetachedThread([this] { run(); });
    return hasThread_;
}

void SerialQueue::run() {
    const MutexLock lock(mutex_);
    // It never ends: what other libraries keep for the thread may be half gone by the time that it could.
    for (;;) {
        runWaiting();
        changed_.wait(mutex_);
    }
}

void SerialQueue::runWaiting() {
    if (running_) return;
    running_ = std::this_thread::get_id();
    while (!waiting_.empty() && !leaving_) {
        auto next = std::move(waiting_.front());
        waiting_.pop_front();
        mutex_.unlock();
        callOut("a callback", next);
        next = nullptr;
        mutex_.lock();
    }
    running_.reset();
    if (leaving_) changed_.notify_all();
}

}  // namespace velmora::platform
