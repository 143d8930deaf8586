#include "platform/MainQueue.h"

#include "platform/CallOut.h"
#include "platform/Clock.h"
#include "platform/Immortal.h"
#include "platform/Mutex.h"
#include "platform/desktop/system/SerialQueue.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <deque>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

namespace velmora::platform {

namespace {

using Work = MainQueue::Work;
using Runner = MainQueue::Runner;

/// The work that waits, and who is told of each piece of it.
class Waiting {
public:
    static Waiting& instance() {
        static Immortal<Waiting> waiting;
        return *waiting;
    }

    void add(Work work) {
        if (!work) return;
        std::shared_ptr<const Runner> runner;
        unsigned turn = 0;
        {
            const MutexLock lock(mutex_);
            if (isClosed_) return;
            work_.push_back(std::move(work));
            runner = runner_;
            turn = turn_;
            if (!runner) return tellPumpOrThread();
        }
        hand(*runner, turn);
    }

    void setRunner(Runner runner) {
        auto next = runner ? std::make_shared<const Runner>(std::move(runner)) : nullptr;
        std::size_t count = 0;
        unsigned turn = 0;
        {
            const MutexLock lock(mutex_);
            runner_.swap(next);
            turn = ++turn_;
            count = work_.size();
            if (!runner_) {
                for (; count > 0; --count) tellPumpOrThread();
            } else {
                drain();
            }
        }
        // The one before is destroyed here, without the lock: it may hold objects of the application.
        next.reset();
        for (; count > 0; --count) {
            if (const auto now = current(turn)) hand(*now, turn);
        }
    }

    std::size_t runWaiting() {
        std::size_t count = 0;
        {
            const MutexLock lock(mutex_);
            choosePump();
            if (runner_) return 0;
            count = work_.size();
            drain();
        }
        std::size_t ran = 0;
        while (ran < count && runNext(std::nullopt)) ++ran;
        const MutexLock lock(mutex_);
        if (!work_.empty() && !runner_) signal();
        return ran;
    }

    int waitingDescriptor() {
        const MutexLock lock(mutex_);
        choosePump();
        if (descriptor_ < 0) {
            descriptor_ = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
            if (descriptor_ < 0)
                log(std::string("Nobody can wait for work of the main queue: ") + std::strerror(errno));
            else if (!work_.empty() && !runner_)
                signal();
        }
        return descriptor_;
    }

    void close() {
        // By the thread that is the main one, as far as is known, what waits is told now.
        if (isOfThisThread()) {
            while (runNext(std::nullopt)) continue;
        }
        std::deque<Work> dropped;
        std::shared_ptr<const Runner> runner;
        {
            const MutexLock lock(mutex_);
            isClosed_ = true;
            dropped.swap(work_);
            runner.swap(runner_);
            ++turn_;
            drain();
        }
        // Both may hold objects of the application, and go without the lock.
    }

    void open() {
        const MutexLock lock(mutex_);
        isClosed_ = false;
    }

private:
    /// Hands the turn for one piece over; whatever piece is the next one then is what runs.
    void hand(const Runner& runner, unsigned turn) {
        callOut("the function of the main queue",
                [&] { runner([this, turn] { static_cast<void>(runNext(turn)); }); });
    }

    /// The function, while it is the one of that turn.
    [[nodiscard]] std::shared_ptr<const Runner> current(unsigned turn) {
        const MutexLock lock(mutex_);
        return turn == turn_ ? runner_ : nullptr;
    }

    /// Runs one piece, if there is one, and if the turn is still that one; absent means whatever it is.
    bool runNext(std::optional<unsigned> turn) {
        Work work;
        {
            const MutexLock lock(mutex_);
            if (work_.empty() || (turn && *turn != turn_)) return false;
            work = std::move(work_.front());
            work_.pop_front();
            last_ = std::this_thread::get_id();
        }
        callOut("work on the main queue", work);
        return true;
    }

    void tellPumpOrThread() VELMORA_REQUIRES(mutex_) {
        if (isPumped_) return signal();
        if (!isThreadTold_) {
            isThreadTold_ = true;
            log("Callbacks come on a thread of the library's: Velmora::setMainQueue says where else");
        }
        thread_.add([this, turn = turn_] { static_cast<void>(runNext(turn)); });
    }

    void choosePump() VELMORA_REQUIRES(mutex_) {
        if (isPumped_) return;
        isPumped_ = true;
        // What was handed to the thread is for whoever pumps now.
        if (!runner_) ++turn_;
    }

    void signal() VELMORA_REQUIRES(mutex_) {
        constexpr std::uint64_t one = 1;
        if (descriptor_ >= 0) static_cast<void>(!::write(descriptor_, &one, sizeof one));
    }

    void drain() VELMORA_REQUIRES(mutex_) {
        std::uint64_t count = 0;
        if (descriptor_ >= 0) static_cast<void>(!::read(descriptor_, &count, sizeof count));
    }

    [[nodiscard]] bool isOfThisThread() {
        const MutexLock lock(mutex_);
        return last_ == std::this_thread::get_id();
    }

    Mutex mutex_;
    std::deque<Work> work_ VELMORA_GUARDED_BY(mutex_);
    std::shared_ptr<const Runner> runner_ VELMORA_GUARDED_BY(mutex_);
    SerialQueue thread_;
    int descriptor_ VELMORA_GUARDED_BY(mutex_) = -1;
    /// Changes with whoever runs the work, so that what the one before was handed does nothing any more.
    unsigned turn_ VELMORA_GUARDED_BY(mutex_) = 0;
    bool isPumped_ VELMORA_GUARDED_BY(mutex_) = false;
    bool isThreadTold_ VELMORA_GUARDED_BY(mutex_) = false;
    bool isClosed_ VELMORA_GUARDED_BY(mutex_) = false;
    std::optional<std::thread::id> last_ VELMORA_GUARDED_BY(mutex_);
};

}  // namespace

void MainQueue::async(Work work) { Waiting::instance().add(std::move(work)); }

void MainQueue::after(std::chrono::milliseconds delay, Work work) {
    if (!work) return;
    Clock::current()->after(delay, [work = std::move(work)] { async(work); });
}

void MainQueue::setRunner(Runner runner) { Waiting::instance().setRunner(std::move(runner)); }

std::size_t MainQueue::runWaiting() { return Waiting::instance().runWaiting(); }

int MainQueue::waitingDescriptor() { return Waiting::instance().waitingDescriptor(); }

void MainQueue::close() { Waiting::instance().close(); }

void MainQueue::open() { Waiting::instance().open(); }

}  // namespace velmora::platform
