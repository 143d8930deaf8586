#pragma once

#include <chrono>
#include <functional>

namespace velmora::platform {

/// Work for the main thread: the one that runs the application's event loop.
///
/// Work may be given from any thread at any time; while no event loop runs, it waits until one does. It runs
/// in the order in which it was given, one piece at a time. An exception that leaves it is caught and logged.
class MainQueue {
public:
    using Work = std::function<void()>;

    MainQueue() = delete;

    /// Runs `work` at a later turn of the event loop, never before this call returns.
    static void async(Work work);

    /// The same, no earlier than `delay` from now by the clock in force.
    static void after(std::chrono::milliseconds delay, Work work);
};

}  // namespace velmora::platform
