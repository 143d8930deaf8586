#include "support/ManualClock.h"

#include <algorithm>
#include <vector>

namespace velmora::test {

std::chrono::system_clock::time_point ManualClock::now() const {
    const platform::MutexLock lock(mutex_);
    return now_;
}

void ManualClock::after(std::chrono::milliseconds delay, Work work) {
    const platform::MutexLock lock(mutex_);
    waiting_.emplace(now_ + std::max(delay, std::chrono::milliseconds(0)), std::move(work));
}

void ManualClock::advance(std::chrono::nanoseconds time) {
    std::vector<Work> due;
    {
        const platform::MutexLock lock(mutex_);
        now_ += time;
        for (; !waiting_.empty() && waiting_.begin()->first <= now_; waiting_.erase(waiting_.begin()))
            due.push_back(std::move(waiting_.begin()->second));
    }
    for (const auto& work : due) work();
}

std::size_t ManualClock::waiting() const {
    const platform::MutexLock lock(mutex_);
    return waiting_.size();
}

}  // namespace velmora::test
