#pragma once

#include "platform/Log.h"

#include <string>
#include <system_error>
#include <thread>
#include <utility>

namespace velmora::platform {

/// Starts a thread that nobody waits for; false, with a line in the log, where the machine has none left.
template <class Work>
[[nodiscard]] bool startDetachedThread(Work&& work) {
    try {
        std::thread(std::forward<Work>(work)).detach();
        return true;
    } catch (const std::system_error& error) {
        log(std::string("A thread cannot be started: ") + error.what());
        return false;
    }
}

}  // namespace velmora::platform
