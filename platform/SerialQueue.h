#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace velmora::platform {

/// Work that runs in the order in which it was given, one piece at a time, on one thread of its own.
///
/// The thread starts with the first piece. An exception that leaves a piece is caught and logged.
class SerialQueue {
public:
    using Work = std::function<void()>;

    SerialQueue();
    /// As `stop`, with a day of patience.
    ~SerialQueue();
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    /// Any thread. After `stop`, work is dropped.
    void async(Work work);
    /// Several pieces for the price of one wake-up of the thread.
    void async(std::vector<Work> pieces);

    /// Leaves what has not begun undone, and waits at most `patience` for the piece that has; a piece that
    /// takes longer goes on alone. From the queue's own thread it does not wait.
    void stop(std::chrono::milliseconds patience);

private:
    struct State;
    std::shared_ptr<State> state_;
};

}  // namespace velmora::platform
