#include "log/LogFormat.h"

#include "platform/Utf8.h"
#include "platform/Value.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <type_traits>
#include <utility>

namespace velmora {

namespace {

constexpr std::string_view kFlags = "-+ #0'";
constexpr std::string_view kLengths = "hlqLjzt";
constexpr std::string_view kSigned = "di";
constexpr std::string_view kUnsigned = "ouxX";
constexpr std::string_view kReal = "aAeEfFgG";
constexpr std::string_view kText = "@sS";
constexpr std::string_view kOther = "cCDOUpn";

bool isOneOf(char c, std::string_view set) { return set.find(c) != std::string_view::npos; }

/// A conversion as it stands in the format: %[flags][width][.precision][length]letter. A width or precision
/// of "*" is not one of them.
struct Conversion {
    std::string_view text;
    std::string_view flags;
    int width = 0;
    int precision = -1;
    char letter = 0;

    /// Reads the one that `format` begins with; absent when there is none.
    static std::optional<Conversion> at(std::string_view format);
};

/// Passes the digits at `at`, of which there may be none.
int takeNumber(std::string_view format, std::size_t& at) {
    // Wide enough for any log line, and no more than a line should be padded by.
    constexpr unsigned most = 1000;
    unsigned number = 0;
    const auto [end, error] = std::from_chars(format.data() + at, format.data() + format.size(), number);
    at = static_cast<std::size_t>(end - format.data());
    if (error == std::errc::result_out_of_range) number = most;
    return static_cast<int>(std::min(number, most));
}

std::optional<Conversion> Conversion::at(std::string_view format) {
    Conversion conversion;
    std::size_t at = 1;
    while (at < format.size() && isOneOf(format[at], kFlags)) ++at;
    conversion.flags = format.substr(1, at - 1);
    conversion.width = takeNumber(format, at);
    if (at < format.size() && format[at] == '.') conversion.precision = takeNumber(format, ++at);
    while (at < format.size() && isOneOf(format[at], kLengths)) ++at;
    if (at >= format.size()) return std::nullopt;
    conversion.letter = format[at];
    conversion.text = format.substr(0, at + 1);
    for (const auto set : {kSigned, kUnsigned, kReal, kText, kOther}) {
        if (isOneOf(conversion.letter, set)) return conversion;
    }
    return std::nullopt;
}

/// The C library's form of a number, by a conversion put together from checked pieces.
template <class Number>
std::string printed(const Conversion& conversion, std::string_view length, char letter, Number number) {
    std::string format = "%";
    format += conversion.flags;
    if (conversion.width > 0) format += std::to_string(conversion.width);
    if (conversion.precision >= 0) format.append(1, '.').append(std::to_string(conversion.precision));
    format.append(length).append(1, letter);

    std::array<char, 2500> text{};
    const int size = std::snprintf(text.data(), text.size(), format.c_str(), number);
    return {text.data(), std::min(static_cast<std::size_t>(std::max(size, 0)), text.size() - 1)};
}

/// Where the first `count` characters of a text end; bytes that are not UTF-8 count as characters too.
std::size_t endOfCharacters(std::string_view text, std::size_t count) {
    const char* at = text.data();
    const char* const end = at + text.size();
    for (; count > 0 && at != end; --count) platform::passUtf8Character(at, end);
    return static_cast<std::size_t>(at - text.data());
}

std::size_t charactersOf(std::string_view text) {
    std::size_t count = 0;
    for (; !text.empty(); ++count) text.remove_prefix(endOfCharacters(text, 1));
    return count;
}

std::string padded(const Conversion& conversion, std::string text) {
    const auto width = static_cast<std::size_t>(conversion.width);
    const auto count = charactersOf(text);
    if (count >= width) return text;
    const bool isLeft = isOneOf('-', conversion.flags);
    return text.insert(isLeft ? text.size() : 0, width - count, ' ');
}

/// The argument as `%@` shows it.
std::string readable(const LogArgument& argument) {
    return std::visit(
        []<class T>(const T& held) -> std::string {
            if constexpr (std::is_same_v<T, std::monostate>) {
                return "(null)";
            } else if constexpr (std::is_same_v<T, std::string_view>) {
                return std::string(held);
            } else if constexpr (std::is_same_v<T, LogArgument::Object>) {
                return held.describe(held.object);
            } else {
                return platform::description(held);
            }
        },
        argument.held());
}

/// A number by a conversion that is made for it; absent for every other pair.
std::optional<std::string> convertedNumber(const Conversion& conversion, const LogArgument& argument) {
    const char letter = conversion.letter;
    return std::visit(
        [&]<class T>(const T& held) -> std::optional<std::string> {
            if constexpr (std::is_arithmetic_v<T>) {
                if (isOneOf(letter, kReal)) return printed(conversion, "", letter, static_cast<double>(held));
            }
            if constexpr (std::is_integral_v<T>) {
                const auto positive = static_cast<unsigned long long>(held);
                if (isOneOf(letter, kUnsigned)) return printed(conversion, "ll", letter, positive);
                if (letter == 'c') return padded(conversion, std::string(1, static_cast<char>(held)));
                if (!isOneOf(letter, kSigned)) return std::nullopt;
                // It may be more than a signed conversion holds.
                if constexpr (std::is_unsigned_v<T>) return printed(conversion, "ll", 'u', positive);
                return printed(conversion, "ll", letter, static_cast<long long>(held));
            }
            return std::nullopt;
        },
        argument.held());
}

std::string converted(const Conversion& conversion, const LogArgument& argument) {
    if (auto number = convertedNumber(conversion, argument)) return std::move(*number);
    auto text = readable(argument);
    // A precision is a length for a text alone: anything else would lose what it says.
    const bool isText =
        isOneOf(conversion.letter, kText) && std::holds_alternative<std::string_view>(argument.held());
    if (isText && conversion.precision >= 0)
        text.resize(endOfCharacters(text, static_cast<std::size_t>(conversion.precision)));
    return padded(conversion, std::move(text));
}

}  // namespace

std::string formatLogLine(std::string_view format, std::initializer_list<LogArgument> arguments) {
    std::string line;
    const auto* next = arguments.begin();
    while (!format.empty()) {
        const auto percent = format.find('%');
        line.append(format.substr(0, percent));
        if (percent == std::string_view::npos) break;
        format.remove_prefix(percent);
        if (format.starts_with("%%")) {
            line += '%';
            format.remove_prefix(2);
            continue;
        }
        const auto conversion = Conversion::at(format);
        const auto text = conversion ? conversion->text : format.substr(0, 1);
        if (conversion && next != arguments.end()) {
            line += converted(*conversion, *next++);
        } else {
            line += text;
        }
        format.remove_prefix(text.size());
    }
    while (next != arguments.end()) line.append(" [").append(readable(*next++)).append("]");
    return line;
}

}  // namespace velmora
