#pragma once

#include <chrono>
#include <functional>

namespace velmora::screen {

/// Work for the thread of what is seen: the one that runs the toolkit's event loop.
///
/// Work may be given from any thread at any time; while no event loop runs, it waits until one does. It runs
/// in the order in which it was given, one piece at a time. An exception that leaves it is caught and logged.
class Queue {
public:
    using Work = std::function<void()>;

    Queue() = delete;

    /// Runs `work` at a later turn of the event loop, never before this call returns.
    static void async(Work work);

    /// The same, no earlier than `delay` from now by the clock in force.
    static void after(std::chrono::milliseconds delay, Work work);
};

}  // namespace velmora::screen
