#include "platform/Clock.h"

#include "platform/Immortal.h"
#include "platform/MainQueue.h"
#include "platform/Mutex.h"

#include <algorithm>
#include <cmath>
#include <map>

#include <QCoreApplication>
#include <QTimer>

namespace velmora::platform {

namespace {

using Steady = std::chrono::steady_clock;

/// The delays that wait, in the order of their ends, with one timer of the event loop for the first of them.
class Delays {
public:
    static Delays& instance() {
        static Immortal<Delays> delays;
        return *delays;
    }

    void add(Steady::time_point due, Clock::Work work) {
        {
            const MutexLock lock(mutex_);
            // Equal ends keep the order in which they were asked for.
            waiting_.emplace(due, std::move(work));
        }
        MainQueue::async([this] { look(); });
    }

    /// The timer has gone off, or went with the application object that it belonged to.
    void onAlarm() {
        {
            const MutexLock lock(mutex_);
            alarm_ = Steady::time_point::max();
        }
        look();
    }

private:
    /// On the main thread: hands over what is due, and sets the timer for what is not.
    void look() {
        const MutexLock lock(mutex_);
        while (!waiting_.empty() && waiting_.begin()->first <= Steady::now()) {
            MainQueue::async(std::move(waiting_.begin()->second));
            waiting_.erase(waiting_.begin());
        }
        if (waiting_.empty() || waiting_.begin()->first >= alarm_) return;
        alarm_ = waiting_.begin()->first;
        // In pieces, because one timer reaches 24 days at most.
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(alarm_ - Steady::now());
        const auto piece = std::min<std::chrono::milliseconds>(left, std::chrono::hours(24));
        QTimer::singleShot(piece, Qt::PreciseTimer, QCoreApplication::instance(), [this] { onAlarm(); });
    }

    Mutex mutex_;
    std::multimap<Steady::time_point, Clock::Work> waiting_ VELMORA_GUARDED_BY(mutex_);
    /// When the next timer goes off.
    Steady::time_point alarm_ VELMORA_GUARDED_BY(mutex_) = Steady::time_point::max();
};

void lookWithNewApplication() {
    MainQueue::async([] { Delays::instance().onAlarm(); });
}

Q_COREAPP_STARTUP_FUNCTION(lookWithNewApplication)

class SystemClock final : public Clock {
public:
    [[nodiscard]] std::chrono::system_clock::time_point now() const override {
        return std::chrono::system_clock::now();
    }

    void after(std::chrono::milliseconds delay, Work work) override {
        if (!work) return;
        // Far beyond any process, and far from the end of the clock's own range.
        constexpr std::chrono::milliseconds furthest = std::chrono::hours(24 * 365 * 100);
        Delays::instance().add(Steady::now() + std::clamp(delay, std::chrono::milliseconds(0), furthest),
                               std::move(work));
    }
};

struct Current {
    Mutex mutex;
    std::shared_ptr<Clock> clock VELMORA_GUARDED_BY(mutex);
};

Current& inForce() {
    static Immortal<Current> instance;
    return *instance;
}

}  // namespace

std::shared_ptr<Clock> Clock::current() {
    static Immortal<std::shared_ptr<Clock>> real(std::make_shared<SystemClock>());
    const MutexLock lock(inForce().mutex);
    return inForce().clock ? inForce().clock : *real;
}

void Clock::replace(std::shared_ptr<Clock> clock) {
    const MutexLock lock(inForce().mutex);
    inForce().clock.swap(clock);
}

std::int64_t nowInMilliseconds() {
    const std::chrono::duration<double> seconds = Clock::current()->now().time_since_epoch();
    return std::llround(seconds.count() * 1000.0);
}

}  // namespace velmora::platform
