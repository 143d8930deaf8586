#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <boost/json.hpp>

namespace velmora::platform {

/// The values that JSON text holds, that records hold, and that the user defaults keep.
///
/// `Value(nullptr)` is the JSON null marker, which is not the same as an absent value.
using Value = boost::json::value;
using Dictionary = boost::json::object;
using Array = boost::json::array;

/// A value that may be absent. What came in stays as it came, wrong kind included; the functions below read
/// it as one kind or another.
using Property = std::optional<Value>;

/// Present and not the JSON null marker.
[[nodiscard]] bool isValid(const Value* value) noexcept;

/// A number or a flag: in records, both are numbers.
[[nodiscard]] bool isNumber(const Value& value) noexcept;

/// The text; absent for every other kind.
[[nodiscard]] std::optional<std::string> asString(const Property& property);

/// The number without its fraction, or the leading whole number of a text, saturated at the ends of the
/// range; 0 for not-a-number, every other kind, and absence.
[[nodiscard]] std::int64_t asInteger(const Property& property) noexcept;
[[nodiscard]] std::int64_t asInteger(const Value& value) noexcept;

/// The number, or the leading number of a text; 0 for every other kind and for absence.
[[nodiscard]] double asDouble(const Property& property) noexcept;

/// A number other than 0, or a text that begins with Y, y, T, t or a whole number other than 0.
[[nodiscard]] bool asBool(const Property& property) noexcept;

/// Whether the property is a number and equals `number`; a text never equals a number.
[[nodiscard]] bool equals(const Property& property, std::int64_t number) noexcept;

/// Whether the property is the number of `name`.
template <class Enumeration>
requires std::is_enum_v<Enumeration>
[[nodiscard]] bool equals(const Property& property, Enumeration name) noexcept {
    return equals(property, static_cast<std::int64_t>(name));
}

/// Whether the property is a text and equals `text`.
[[nodiscard]] bool equals(const Property& property, std::string_view text) noexcept;

/// Whether the property is a text and equals one of these.
[[nodiscard]] bool isOneOf(const Property& property, const std::vector<std::string>& texts) noexcept;

/// The value as a person reads it: a text as it stands, a number in decimal, a flag as 1 or 0, the null
/// marker as "<null>", an array or a dictionary as JSON text.
[[nodiscard]] std::string description(const Value& value);

/// What a format writes for it: its description, and "(null)" for what is absent.
[[nodiscard]] std::string formatted(const Property& property);
[[nodiscard]] std::string formatted(const std::optional<std::string>& text);

/// A whole number out of a real one: truncated towards 0, saturated, 0 for not-a-number.
[[nodiscard]] std::int64_t saturated(double number) noexcept;

/// A present text, or an absent property.
[[nodiscard]] Property boxed(const std::optional<std::string>& text);

}  // namespace velmora::platform
