#include "core/LogFormat.h"

#include "platform/Value.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <type_traits>

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

int takeNumber(std::string_view format, std::size_t& at) {
    // Wide enough for any log line, and no more than a line should be padded by.
    constexpr int most = 1000;
    int number = 0;
    const auto* end = format.data() + format.size();
    const auto result = std::from_chars(format.data() + at, end, number);
    at = static_cast<std::size_t>(result.ptr - format.data());
    return result.ec == std::errc::result_out_of_range ? most : std::min(number, most);
}

std::optional<Conversion> Conversion::at(std::string_view format) {
    Conversion conversion;
    std::size_t at = 1;
    while (at < format.size() && isOneOf(format[at], kFlags)) ++at;
    conversion.flags = format.substr(1, at - 1);
    if (at < format.size() && format[at] >= '0' && format[at] <= '9')
        conversion.width = takeNumber(format, at);
    if (at < format.size() && format[at] == '.') {
        ++at;
        conversion.precision =
            at < format.size() && format[at] >= '0' && format[at] <= '9' ? takeNumber(format, at) : 0;
    }
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
    format.append(conversion.flags).append(std::to_string(conversion.width));
    if (conversion.width == 0) format.pop_back();
    if (conversion.precision >= 0) format.append(1, '.').append(std::to_string(conversion.precision));
    format.append(length).append(1, letter);

    std::array<char, 2500> text{};
    const int size = std::snprintf(text.data(), text.size(), format.c_str(), number);
    return {text.data(), std::min(static_cast<std::size_t>(std::max(size, 0)), text.size() - 1)};
}

std::string padded(const Conversion& conversion, std::string text) {
    const auto width = static_cast<std::size_t>(conversion.width);
    if (text.size() >= width) return text;
    const auto missing = width - text.size();
    return isOneOf('-', conversion.flags) ? text.append(missing, ' ') : text.insert(0, missing, ' ');
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

std::string converted(const Conversion& conversion, const LogArgument& argument) {
    const bool wantsSigned = isOneOf(conversion.letter, kSigned);
    const bool wantsUnsigned = isOneOf(conversion.letter, kUnsigned);
    if (const auto* number = std::get_if<std::int64_t>(&argument.held())) {
        if (wantsSigned) return printed(conversion, "ll", conversion.letter, static_cast<long long>(*number));
        if (wantsUnsigned)
            return printed(conversion, "ll", conversion.letter, static_cast<unsigned long long>(*number));
        if (isOneOf(conversion.letter, kReal))
            return printed(conversion, "", conversion.letter, static_cast<double>(*number));
        if (conversion.letter == 'c') return padded(conversion, std::string(1, static_cast<char>(*number)));
    }
    if (const auto* number = std::get_if<std::uint64_t>(&argument.held())) {
        if (wantsSigned || wantsUnsigned) {
            const char letter = wantsSigned ? 'u' : conversion.letter;
            return printed(conversion, "ll", letter, static_cast<unsigned long long>(*number));
        }
        if (isOneOf(conversion.letter, kReal))
            return printed(conversion, "", conversion.letter, static_cast<double>(*number));
        if (conversion.letter == 'c') return padded(conversion, std::string(1, static_cast<char>(*number)));
    }
    if (const auto* number = std::get_if<double>(&argument.held());
        number != nullptr && isOneOf(conversion.letter, kReal)) {
        return printed(conversion, "", conversion.letter, *number);
    }
    auto text = readable(argument);
    // A precision is a length for a text alone: anything else would lose what it says.
    const bool isText =
        isOneOf(conversion.letter, kText) && std::holds_alternative<std::string_view>(argument.held());
    if (isText && conversion.precision >= 0)
        text.resize(std::min(text.size(), static_cast<std::size_t>(conversion.precision)));
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
        if (conversion && next != arguments.end()) {
            line += converted(*conversion, *next++);
        } else {
            line.append(conversion ? conversion->text : format.substr(0, 1));
        }
        format.remove_prefix(conversion ? conversion->text.size() : 1);
    }
    while (next != arguments.end()) line.append(" [").append(readable(*next++)).append("]");
    return line;
}

}  // namespace velmora
