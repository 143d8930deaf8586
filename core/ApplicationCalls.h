#pragma once

#include "platform/CallOut.h"

#include <chrono>
#include <string_view>
#include <utility>

namespace velmora {

/// The calls of the library into the application, and whether there may be any: none after `close`, and none
/// once the process has left `main`.
class ApplicationCalls {
public:
    ApplicationCalls() = delete;

    /// Calls `code`, unless they are closed. What it throws is logged; `what` names it there.
    template <class Code>
    static void run(std::string_view what, Code&& code) noexcept {
        if (!begin()) return;
        platform::callOut(what, std::forward<Code>(code));
        end();
    }

    [[nodiscard]] static bool areOpen() noexcept;
    static void open();

    /// None begins any more; those that run on other threads are waited for, until `deadline` at most.
    static void close(std::chrono::steady_clock::time_point deadline) noexcept;

private:
    [[nodiscard]] static bool begin() noexcept;
    static void end() noexcept;
};

}  // namespace velmora
