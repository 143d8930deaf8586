#pragma once

#include <optional>
#include <string>

namespace velmora {

/// The MD5 digest (RFC 1321) of the text up to its first zero byte, as 32 lowercase hexadecimal digits; the
/// empty text for the empty text, absent for an absent one.
[[nodiscard]] std::optional<std::string> VLMD5(const std::optional<std::string>& text);

}  // namespace velmora
