#include "ui/ProgressOffset.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string_view>

namespace velmora {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Whether `text` has a digit where the form has a zero, and the form's own character everywhere else.
bool hasForm(std::string_view text, std::string_view form) {
    return std::equal(text.begin(), text.end(), form.begin(), form.end(),
                      [](char c, char wanted) { return wanted == '0' ? isDigit(c) : c == wanted; });
}

std::int64_t number(std::string_view text, std::size_t at, std::size_t digits) {
    std::int64_t value = 0;
    for (const char c : text.substr(at, digits)) value = value * 10 + (c - '0');
    return value;
}

/// Of a text that begins with "hh:mm:ss".
std::int64_t milliseconds(std::string_view text) {
    return number(text, 6, 2) * 1000 + number(text, 3, 2) * 60'000 + number(text, 0, 2) * 3'600'000;
}

}  // namespace

bool isProgressOffsetDue(const std::string& offset, float progress, float currentTime) {
    // Another character than the dot before the milliseconds is taken for none of the forms.
    if (hasForm(offset, "00:00:00.000"))
        return 1000.0 * currentTime > static_cast<double>(milliseconds(offset) + number(offset, 9, 3));
    if (hasForm(offset, "00:00:00")) return currentTime > static_cast<double>(milliseconds(offset));
    const bool isPercentage =
        offset.size() > 1 && offset.back() == '%' && std::all_of(offset.begin(), offset.end() - 1, isDigit);
    if (!isPercentage) return false;
    std::int64_t percent = std::numeric_limits<std::int64_t>::max();
    std::from_chars(offset.data(), offset.data() + offset.size(), percent);
    return progress > static_cast<double>(percent);
}

}  // namespace velmora
