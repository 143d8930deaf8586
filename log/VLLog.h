#pragma once

#include "platform/Value.h"
#include <velmora/VLLog.h>

#include <string>

namespace velmora {

template <>
struct LogDescription<platform::Value> {
    static std::string of(const platform::Value& value) { return platform::description(value); }
};

/// Whether this process logs.
class VLLogger {
public:
    VLLogger() = delete;

    static void setShallLog(bool shallLog) noexcept;

    /// What settles it at the first line, while nothing was set. Without one nothing is logged until then.
    static void setStoredSwitch(bool (*isOn)()) noexcept;
};

}  // namespace velmora
