#pragma once

#include <velmora/VLLog.h>

#include <initializer_list>
#include <string>
#include <string_view>

namespace velmora {

/// The text of a log line: `format` with its conversions replaced, by the rules of `VLLog`.
[[nodiscard]] std::string formatLogLine(std::string_view format,
                                        std::initializer_list<LogArgument> arguments);

}  // namespace velmora
