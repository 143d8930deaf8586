#include "platform/SerialQueue.h"

#include "platform/CallOut.h"
#include "platform/Mutex.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <iterator>
#include <thread>

namespace velmora::platform {

/// Shared with the thread, which may outlive the queue.
struct SerialQueue::State {
    Mutex mutex;
    std::condition_variable_any changed;
    std::deque<Work> work VELMORA_GUARDED_BY(mutex);
    std::thread::id thread VELMORA_GUARDED_BY(mutex);
    bool started VELMORA_GUARDED_BY(mutex) = false;
    bool stopping VELMORA_GUARDED_BY(mutex) = false;
    bool ended VELMORA_GUARDED_BY(mutex) = false;

    /// The next piece; empty when there will be none.
    Work next() {
        const MutexLock lock(mutex);
        while (work.empty() && !stopping) changed.wait(mutex);
        if (stopping) {
            ended = true;
            changed.notify_all();
            return {};
        }
        auto piece = std::move(work.front());
        work.pop_front();
        return piece;
    }

    void run() {
        while (const auto piece = next()) callOut("a callback", piece);
    }
};

SerialQueue::SerialQueue() : state_(std::make_shared<State>()) {}

SerialQueue::~SerialQueue() { stop(std::chrono::hours(24)); }

void SerialQueue::async(Work work) {
    std::vector<Work> one;
    one.push_back(std::move(work));
    async(std::move(one));
}

void SerialQueue::async(std::vector<Work> pieces) {
    std::erase_if(pieces, [](const Work& piece) { return !piece; });
    const MutexLock lock(state_->mutex);
    if (state_->stopping || pieces.empty()) return;
    std::move(pieces.begin(), pieces.end(), std::back_inserter(state_->work));
    if (!state_->started) {
        std::thread thread([state = state_] { state->run(); });
        state_->thread = thread.get_id();
        thread.detach();
        state_->started = true;
    }
    state_->changed.notify_all();
}

void SerialQueue::stop(std::chrono::milliseconds patience) {
    const MutexLock lock(state_->mutex);
    state_->stopping = true;
    state_->changed.notify_all();
    if (!state_->started || state_->thread == std::this_thread::get_id()) return;
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!state_->ended && std::chrono::steady_clock::now() < end)
        state_->changed.wait_until(state_->mutex, end);
}

}  // namespace velmora::platform
