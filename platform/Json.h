#pragma once

#include "platform/Value.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace velmora::platform {

/// How deep arrays and dictionaries may lie in one another, in text that is read and in values that are
/// written.
inline constexpr std::size_t kDeepestJson = 512;

/// Reads one JSON text (RFC 8259), with a byte order mark before it or without. Whole numbers stay whole as
/// far as 64 bits go, and every other number becomes the nearest double. Absent when the text is not JSON,
/// not UTF-8, or nested deeper than `kDeepestJson`; never throws on bad text.
[[nodiscard]] std::optional<Value> parseJson(std::string_view text);

/// Writes JSON text by the rules of `JsonWriter`; `parseJson` reads it back as an equal value. Absent when
/// the value is nested deeper than `kDeepestJson`, or is itself a number that is not finite.
[[nodiscard]] std::optional<std::string> writeJson(const Value& value);
[[nodiscard]] std::optional<std::string> writeJson(const Dictionary& dictionary);

}  // namespace velmora::platform
