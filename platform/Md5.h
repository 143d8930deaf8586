#pragma once

#include <string>
#include <string_view>

namespace velmora::platform {

/// The MD5 digest (RFC 1321) of the bytes, as 32 lowercase hexadecimal digits.
[[nodiscard]] std::string md5(std::string_view bytes);

}  // namespace velmora::platform
