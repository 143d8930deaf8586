#pragma once

#include <string_view>

namespace velmora::platform {

/// Passes one character of UTF-8 (RFC 3629) of more than one byte. False when the bytes are not one; it then
/// passes those of them that cannot begin another.
bool passUtf8Character(const char*& at, const char* end) noexcept;

[[nodiscard]] bool isUtf8(std::string_view text) noexcept;

}  // namespace velmora::platform
