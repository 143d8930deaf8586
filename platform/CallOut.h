#pragma once

#include "platform/Log.h"

#include <exception>
#include <string>
#include <string_view>
#include <utility>

namespace velmora::platform {

/// Runs foreign code: what it throws is logged and goes no further. `what` names it in the log line.
template <class Code>
void callOut(std::string_view what, Code&& code) noexcept {
    try {
        std::forward<Code>(code)();
    } catch (const std::exception& error) {
        log("An exception left " + std::string(what) + ": " + error.what());
    } catch (...) {
        log("An exception left " + std::string(what));
    }
}

}  // namespace velmora::platform
