#include "platform/Value.h"

#include "platform/Json.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace velmora::platform {

namespace {

std::string_view viewOf(const Value& text) { return {text.get_string().data(), text.get_string().size()}; }

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// What is left of a text before its leading number, without blanks and a plus sign, which from_chars
/// refuses.
std::string_view numberPart(std::string_view text) {
    const auto start = text.find_first_not_of(" \t\n\v\f\r");
    if (start == std::string_view::npos) return {};
    text.remove_prefix(start);
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    return text;
}

std::int64_t leadingInteger(std::string_view text) {
    text = numberPart(text);
    std::int64_t number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc::result_out_of_range) return number;
    return text.starts_with('-') ? std::numeric_limits<std::int64_t>::min()
                                 : std::numeric_limits<std::int64_t>::max();
}

double leadingDouble(std::string_view text) {
    text = numberPart(text);
    const auto digits = text.starts_with('-') ? text.substr(1) : text;
    // from_chars would also take the words "inf" and "nan".
    if (digits.empty() || !(isDigit(digits[0]) || digits[0] == '.')) return 0;
    double number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    // Beyond the range it leaves the number alone, where infinity or 0 is meant.
    return result.ec == std::errc::result_out_of_range ? std::strtod(std::string(text).c_str(), nullptr)
                                                       : number;
}

bool leadingBool(std::string_view text) {
    text = numberPart(text);
    if (text.empty()) return false;
    if (text.starts_with('-')) text.remove_prefix(1);
    const auto first = text.find_first_not_of('0');
    if (first == std::string_view::npos) return false;
    const char c = text[first];
    return isDigit(c) || (first == 0 && (c == 'Y' || c == 'y' || c == 'T' || c == 't'));
}

double numberOf(const Value& value) noexcept {
    switch (value.kind()) {
    case boost::json::kind::bool_: return value.get_bool() ? 1 : 0;
    case boost::json::kind::int64: return static_cast<double>(value.get_int64());
    case boost::json::kind::uint64: return static_cast<double>(value.get_uint64());
    case boost::json::kind::double_: return value.get_double();
    case boost::json::kind::string: return leadingDouble(viewOf(value));
    default: return 0;
    }
}

std::string shortest(double number) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    return {text.data(), end};
}

}  // namespace

bool isValid(const Value* value) noexcept { return value != nullptr && !value->is_null(); }

bool isNumber(const Value& value) noexcept { return value.is_number() || value.is_bool(); }

std::optional<std::string> asString(const Property& property) {
    if (!property || !property->is_string()) return std::nullopt;
    return std::string(viewOf(*property));
}

std::int64_t asInteger(const Value& value) noexcept {
    switch (value.kind()) {
    case boost::json::kind::int64: return value.get_int64();
    case boost::json::kind::uint64: {
        constexpr auto most = std::numeric_limits<std::int64_t>::max();
        const auto number = value.get_uint64();
        return number > static_cast<std::uint64_t>(most) ? most : static_cast<std::int64_t>(number);
    }
    case boost::json::kind::string: return leadingInteger(viewOf(value));
    default: return saturated(numberOf(value));
    }
}

std::int64_t asInteger(const Property& property) noexcept { return property ? asInteger(*property) : 0; }

double asDouble(const Property& property) noexcept { return property ? numberOf(*property) : 0; }

bool asBool(const Property& property) noexcept {
    if (!property) return false;
    if (property->is_string()) return leadingBool(viewOf(*property));
    return numberOf(*property) != 0;
}

bool equals(const Property& property, std::int64_t number) noexcept {
    if (!property || !isNumber(*property)) return false;
    if (property->is_uint64())
        return number >= 0 && property->get_uint64() == static_cast<std::uint64_t>(number);
    if (property->is_int64()) return property->get_int64() == number;
    return numberOf(*property) == static_cast<double>(number);
}

bool equals(const Property& property, std::string_view text) noexcept {
    return property && property->is_string() && viewOf(*property) == text;
}

bool isOneOf(const Property& property, const std::vector<std::string>& texts) noexcept {
    return std::any_of(texts.begin(), texts.end(), [&](const auto& text) { return equals(property, text); });
}

std::string description(const Value& value) {
    switch (value.kind()) {
    case boost::json::kind::null: return "<null>";
    case boost::json::kind::bool_: return value.get_bool() ? "1" : "0";
    case boost::json::kind::int64: return std::to_string(value.get_int64());
    case boost::json::kind::uint64: return std::to_string(value.get_uint64());
    case boost::json::kind::double_: return shortest(value.get_double());
    case boost::json::kind::string: return std::string(viewOf(value));
    default: return writeJson(value).value_or("(a value nested too deep)");
    }
}

std::string formatted(const Property& property) { return property ? description(*property) : "(null)"; }

std::string formatted(const std::optional<std::string>& text) { return text.value_or("(null)"); }

std::int64_t saturated(double number) noexcept {
    // 2^63 is the first double beyond the range; its negative is the last one inside.
    constexpr double limit = 9223372036854775808.0;
    if (std::isnan(number)) return 0;
    if (number >= limit) return std::numeric_limits<std::int64_t>::max();
    if (number < -limit) return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(number);
}

Property boxed(const std::optional<std::string>& text) {
    if (!text) return std::nullopt;
    return Value(*text);
}

}  // namespace velmora::platform
