#include "screen/Queue.h"

#include "platform/CallOut.h"
#include "platform/Clock.h"
#include "platform/Immortal.h"
#include "platform/Mutex.h"

#include <deque>
#include <memory>

#include <QCoreApplication>
#include <QObject>

namespace velmora::screen {

namespace {

/// The work that waits, and the object of the main thread that is told of it.
class Waiting {
public:
    static Waiting& instance() {
        static platform::Immortal<Waiting> waiting;
        return *waiting;
    }

    void add(Queue::Work work) {
        if (!work) return;
        const platform::MutexLock lock(mutex_);
        work_.push_back(std::move(work));
        if (receiver_ && work_.size() == 1) wake();
    }

    /// The application object has come: what waited is due at the first turns of its event loop.
    void attach() {
        auto receiver = std::make_unique<QObject>();
        receiver->moveToThread(QCoreApplication::instance()->thread());
        const platform::MutexLock lock(mutex_);
        receiver_ = std::move(receiver);
        if (!work_.empty()) wake();
    }

    /// The application object goes: work waits for the next one.
    void detach() {
        std::unique_ptr<QObject> receiver;
        const platform::MutexLock lock(mutex_);
        receiver.swap(receiver_);
    }

private:
    /// Runs one piece of work at a later turn. While any waits, one such call is on its way.
    void wake() VELMORA_REQUIRES(mutex_) {
        QMetaObject::invokeMethod(
            receiver_.get(), [this] { runNext(); }, Qt::QueuedConnection);
    }

    void runNext() {
        Queue::Work work;
        {
            const platform::MutexLock lock(mutex_);
            if (work_.empty()) return;
            work = std::move(work_.front());
            work_.pop_front();
            // Before the work and not after it, so that work which runs an event loop of its own does not
            // hold up the rest; and not earlier, because such a loop sleeps over what was posted before it.
            if (!work_.empty() && receiver_) wake();
        }
        if (work) platform::callOut("work of what is seen", work);
    }

    platform::Mutex mutex_;
    std::deque<Queue::Work> work_ VELMORA_GUARDED_BY(mutex_);
    std::unique_ptr<QObject> receiver_ VELMORA_GUARDED_BY(mutex_);
};

void attachToApplication() {
    Waiting::instance().attach();
    qAddPostRoutine([] { Waiting::instance().detach(); });
}

// Runs with every application object that is made, at once if there is one when the library is loaded.
Q_COREAPP_STARTUP_FUNCTION(attachToApplication)

}  // namespace

void Queue::async(Work work) { Waiting::instance().add(std::move(work)); }

void Queue::after(std::chrono::milliseconds delay, Work work) {
    if (!work) return;
    platform::Clock::current()->after(delay, [work = std::move(work)] { async(work); });
}

}  // namespace velmora::screen
