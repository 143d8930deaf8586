#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

namespace velmora::platform {

/// The wall clock and the delays of the queues, together, so that a test can replace both by one that it
/// moves.
class Clock {
public:
    using Work = std::function<void()>;

    virtual ~Clock() = default;

    [[nodiscard]] virtual std::chrono::system_clock::time_point now() const = 0;

    /// Runs `work` once on a thread of the clock's, no earlier than `delay` from now; a delay that is not
    /// positive means as soon as possible. Delays run in the order of their ends, those of equal end in the
    /// order in which they were asked for. The work is to be short: it hands over to a queue.
    virtual void after(std::chrono::milliseconds delay, Work work) = 0;

    /// The clock in force. Any thread.
    [[nodiscard]] static std::shared_ptr<Clock> current();

    /// Puts another clock in force; none restores the real one. Delays that were asked of the old one stay
    /// with it.
    static void replace(std::shared_ptr<Clock> clock);
};

/// Now, in milliseconds since 1970 (UTC), rounded to the nearest.
[[nodiscard]] std::int64_t nowInMilliseconds();

}  // namespace velmora::platform
