#pragma once

#include <chrono>
#include <cstddef>
#include <functional>

namespace velmora::platform {

/// Work for the application's main thread, wherever the application says that is.
///
/// Work may be given from any thread at any time. It runs in the order in which it was given, one piece at a
/// time. An exception that leaves it is caught and logged.
///
/// Who runs it is one of three: the function that was set; else whoever calls `runWaiting`, from the first
/// call of that or of `waitingDescriptor` on; else a thread of the library's own, with a line in the log when
/// that begins. What waits when that changes goes to the new one.
class MainQueue {
public:
    using Work = std::function<void()>;
    using Runner = std::function<void(Work)>;

    MainQueue() = delete;

    /// Runs `work` later, never before this call returns, unless the function that was set runs it at once.
    static void async(Work work);

    /// The same, no earlier than `delay` from now by the clock in force.
    static void after(std::chrono::milliseconds delay, Work work);

    /// Has `runner` run each piece of work from here on. It is called on the thread that gives the work, and
    /// what it is called with may be called once, later, on any thread. Empty goes back to what was before.
    static void setRunner(Runner runner);

    /// Runs what waits now, and says how many pieces that was; none while there is a function.
    static std::size_t runWaiting();

    /// Readable, as poll(2) has it, while work waits for `runWaiting`. It belongs to the library. -1, with a
    /// line in the log, where the process has no descriptor left.
    [[nodiscard]] static int waitingDescriptor();

    /// Drops the function and what waits, and what is given afterwards until `open`. On the thread that ran
    /// work last, what waits runs first. Waits for nothing.
    static void close();
    static void open();
};

}  // namespace velmora::platform
