#include "platform/Clock.h"

#include "platform/CallOut.h"
#include "platform/Immortal.h"
#include "platform/Mutex.h"
#include "platform/desktop/system/DetachedThread.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>
#include <vector>

#include <glib.h>

namespace velmora::platform {

namespace {

/// The delays that wait, in the order of their ends, on a thread of their own with one alarm for the first.
class Delays {
public:
    static Delays& instance() {
        static Immortal<Delays> delays;
        return *delays;
    }

    void add(std::chrono::microseconds delay, Clock::Work work) {
        const MutexLock lock(mutex_);
        // Equal ends keep the order in which they were asked for.
        waiting_.emplace(g_get_monotonic_time() + delay.count(), std::move(work));
        if (!hasThread_) hasThread_ = startDetachedThread([this] { run(); });
        setAlarm();
    }

private:
    friend class Immortal<Delays>;

    Delays() {
        static GSourceFuncs functions{};
        functions.dispatch = [](GSource*, GSourceFunc, gpointer) -> gboolean {
            instance().onAlarm();
            return G_SOURCE_CONTINUE;
        };
        context_ = g_main_context_new();
        alarm_ = g_source_new(&functions, sizeof(GSource));
        g_source_attach(alarm_, context_);
    }

    void run() {
        for (;;) g_main_context_iteration(context_, TRUE);
    }

    void onAlarm() {
        std::vector<Clock::Work> due;
        {
            const MutexLock lock(mutex_);
            const auto now = g_get_monotonic_time();
            for (; !waiting_.empty() && waiting_.begin()->first <= now; waiting_.erase(waiting_.begin()))
                due.push_back(std::move(waiting_.begin()->second));
            setAlarm();
        }
        for (const auto& work : due) callOut("the end of a delay", work);
    }

    void setAlarm() VELMORA_REQUIRES(mutex_) {
        g_source_set_ready_time(alarm_, waiting_.empty() ? -1 : waiting_.begin()->first);
    }

    Mutex mutex_;
    /// By the monotonic clock, in microseconds.
    std::multimap<gint64, Clock::Work> waiting_ VELMORA_GUARDED_BY(mutex_);
    bool hasThread_ VELMORA_GUARDED_BY(mutex_) = false;
    GMainContext* context_ = nullptr;
    GSource* alarm_ = nullptr;
};

class SystemClock final : public Clock {
public:
    [[nodiscard]] std::chrono::system_clock::time_point now() const override {
        return std::chrono::system_clock::now();
    }

    void after(std::chrono::milliseconds delay, Work work) override {
        if (!work) return;
        // Far beyond any process, and far from the end of the clock's own range.
        constexpr std::chrono::milliseconds furthest = std::chrono::hours(24 * 365 * 100);
        Delays::instance().add(std::clamp(delay, std::chrono::milliseconds(0), furthest), std::move(work));
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
