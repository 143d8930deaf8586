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
};

}  // namespace velmora
