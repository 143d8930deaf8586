#pragma once

#include <chrono>
#include <map>

#include "platform/Clock.h"
#include "platform/Mutex.h"

namespace velmora::test {

/// A clock that moves only when it is told to.
class ManualClock final : public platform::Clock {
public:
    [[nodiscard]] std::chrono::system_clock::time_point now() const override;
    void after(std::chrono::milliseconds delay, Work work) override;

    /// Moves on; delays that end meanwhile run their work here, in the order of their ends.
    void advance(std::chrono::nanoseconds time);

    /// How many delays have not ended.
    [[nodiscard]] std::size_t waiting() const;

private:
    using Time = std::chrono::system_clock::time_point;

    mutable platform::Mutex mutex_;
    Time now_ VELMORA_GUARDED_BY(mutex_){std::chrono::milliseconds(1'700'000'000'000)};
    std::multimap<Time, Work> waiting_ VELMORA_GUARDED_BY(mutex_);
};

/// Puts a manual clock in force while it lives.
class UseManualClock {
public:
    UseManualClock() { platform::Clock::replace(clock_); }

    ~UseManualClock() { platform::Clock::replace(nullptr); }

    UseManualClock(const UseManualClock&) = delete;
    UseManualClock& operator=(const UseManualClock&) = delete;

    ManualClock* operator->() { return clock_.get(); }

private:
    std::shared_ptr<ManualClock> clock_ = std::make_shared<ManualClock>();
};

}  // namespace velmora::test
