#pragma once

#include <chrono>

namespace velmora::platform {

/// While it lives, all that its thread asks of the store waits together no longer than a single call may.
/// They nest, and the outermost counts.
class OneWait {
public:
    /// How long a call may wait for other threads and processes, in all.
    static constexpr std::chrono::milliseconds kLongest{250};

    OneWait();
    ~OneWait();
    OneWait(const OneWait&) = delete;
    OneWait& operator=(const OneWait&) = delete;

    /// When this thread has to stop waiting.
    [[nodiscard]] static std::chrono::steady_clock::time_point end();

private:
    bool isOutermost_;
};

}  // namespace velmora::platform
