#pragma once

#include <initializer_list>
#include <string_view>

#include <velmora/LogArgument.h>
#include <velmora/export.h>

namespace velmora {

/// Writes one line to the platform's log when debug logging is on, and nothing otherwise.
///
/// Logging follows the debug mode given at initialisation; before that, the debug mode that an earlier run
/// stored. `format` takes the C conversions and `%@`, which stands for any argument. An absent value reads
/// "(null)"; a precision is the most characters (UTF-8) that a text gets. A conversion and an argument that
/// do not match print the argument as it reads best; a conversion without an argument is printed as it
/// stands, and arguments left over follow in brackets. Any thread; never throws.
VELMORA_EXPORT void VLLog(std::string_view format, std::initializer_list<LogArgument> arguments) noexcept;

template <class... Arguments>
void VLLog(std::string_view format, const Arguments&... arguments) noexcept {
    VLLog(format, std::initializer_list<LogArgument>{LogArgument(arguments)...});
}

}  // namespace velmora
