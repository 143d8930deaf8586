#include "log/LogFormat.h"

#include "log/VLLog.h"

#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

using platform::Value;

using Formatted = std::vector<std::pair<std::string, std::string>>;

void expectEqual(const Formatted& cases) {
    for (const auto& [actual, expected] : cases) EXPECT_EQ(actual, expected);
}

constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
constexpr auto kMostUnsigned = std::numeric_limits<std::uint64_t>::max();

TEST(LogFormat, AnObjectConversionStandsForAnyArgument) {
    const Value dictionary{{"k", nullptr}};
    const Value text("text");
    const Value null(nullptr);
    const platform::Property absent;
    const char* const noText = nullptr;
    expectEqual({
        {formatLogLine("%@", {"text"}), "text"},
        {formatLogLine("%@|%@", {std::string_view("a\0b", 3), std::string()}), std::string("a\0b|", 4)},
        {formatLogLine("%@", {kMostUnsigned}), "18446744073709551615"},
        {formatLogLine("%@ %@", {true, false}), "1 0"},
        {formatLogLine("%@ %@", {2.5, 1e300}), "2.5 1e+300"},
        {formatLogLine("%@", {nullptr}), "(null)"},
        {formatLogLine("%@", {noText}), "(null)"},
        {formatLogLine("%@ %@", {std::optional<int>(7), std::optional<std::string>()}), "7 (null)"},
        {formatLogLine("%@ %@ %@ %@", {dictionary, text, null, absent}), R"({"k":null} text <null> (null))"},
    });
}

TEST(LogFormat, CConversionsTakeTheArgumentsThatTheyAreMadeFor) {
    expectEqual({
        {formatLogLine("%d %i %li %lld %zd", {1, -2, 3L, kMost, 5}), "1 -2 3 9223372036854775807 5"},
        {formatLogLine("%u %lu %x %X %o", {1U, kMostUnsigned, 255, 255, 8}),
         "1 18446744073709551615 ff FF 10"},
        {formatLogLine("%f %.2f %e %g %.0f", {1.5, 2.345678, 1.0, 0.5, 2.5}),
         "1.500000 2.35 1.000000e+00 0.5 2"},
        {formatLogLine("%s %S %c", {"a", std::string("b"), 'c'}), "a b c"},
        {formatLogLine("[%5d|%-5d|%05d|%+d|% d|%.3d]", {42, 42, 42, 42, 42, 42}),
         "[   42|42   |00042|+42| 42|042]"},
        {formatLogLine("[%5s|%-5s|%.2s|%4.1s]", {"abc", "abc", "abc", "abc"}), "[  abc|abc  |ab|   a]"},
        {formatLogLine("[%.s|%.0@|%.9s]", {"abc", "abc", "abc"}), "[||abc]"},
        // Characters of two, three and four bytes, and bytes that are none.
        {formatLogLine("[%.3s|%5.2@|%-4s|%.2s]", {"سلام", "€𝄞a", "é", "€"}), "[سلا|   €𝄞|é   |€]"},
        {formatLogLine("[%.1s|%.2s|%3s]", {"\xff\xff", "\xe2\x82", "\xff"}), "[\xff|\xe2\x82|  \xff]"},
        {formatLogLine("[%#x|%8.3f]", {255, 3.14159}), "[0xff|   3.142]"},
    });
}

TEST(LogFormat, AnArgumentOfAnotherKindReadsAsBestItCan) {
    expectEqual({
        {formatLogLine("%s", {5}), "5"},
        {formatLogLine("%d %x", {"text", "text"}), "text text"},
        {formatLogLine("%.1f %.2d", {"text", "text"}), "text text"},
        {formatLogLine("%d", {2.5}), "2.5"},
        {formatLogLine("%.1d", {-0.25}), "-0.25"},
        {formatLogLine("%f", {3}), "3.000000"},
        {formatLogLine("%d %s %f %c %p %n", {nullptr, nullptr, nullptr, nullptr, nullptr, nullptr}),
         "(null) (null) (null) (null) (null) (null)"},
        {formatLogLine("%.1f %.3s %.2@", {nullptr, std::nullopt, nullptr}), "(null) (null) (null)"},
        {formatLogLine("%n %p", {5, 5}), "5 5"},
        {formatLogLine("%f %d",
                       {std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::infinity()}),
         "nan -inf"},
    });
}

TEST(LogFormat, ConversionsWithoutArgumentStayAndArgumentsWithoutConversionFollow) {
    expectEqual({
        {formatLogLine("", {}), ""},
        {formatLogLine("", {1, "a"}), " [1] [a]"},
        {formatLogLine("line", {nullptr}), "line [(null)]"},
        {formatLogLine("%@ and %@", {1}), "1 and %@"},
        {formatLogLine("%-5.3lld", {}), "%-5.3lld"},
        {formatLogLine("%@", {"%@ %s %n"}), "%@ %s %n"},
        {formatLogLine("50%% of %d%%", {80}), "50% of 80%"},
        // What is no conversion stays, too.
        {formatLogLine("100%", {1}), "100% [1]"},
        {formatLogLine("%%%", {}), "%%"},
        {formatLogLine("%5", {1}), "%5 [1]"},
        {formatLogLine("%-.ll", {1}), "%-.ll [1]"},
        {formatLogLine("%y%", {1}), "%y% [1]"},
        {formatLogLine("%~d %~", {1}), "%~d %~ [1]"},
        {formatLogLine("%*d", {5, 1}), "%*d [5] [1]"},
        {formatLogLine("%1$d", {1}), "%1$d [1]"},
        {formatLogLine(std::string_view("%\0d", 3), {1}), std::string("%\0d [1]", 7)},
    });
}

TEST(LogFormat, AbsurdFormatsAndLongTextsAreHarmless) {
    const std::string megabyte(1'000'000, 'x');
    EXPECT_EQ(formatLogLine("%@", {megabyte}), megabyte);
    EXPECT_EQ(formatLogLine(megabyte, {}), megabyte);
    EXPECT_EQ(formatLogLine(std::string(100'000, '%'), {}), std::string(50'000, '%'));

    // A line is never padded beyond what a line can be.
    const std::string digits(50, '9');
    for (const char* conversion : {"d", "x", "f", "e", "a", "s", "@", "c", "n"}) {
        const auto wide = formatLogLine("%" + digits + conversion, {7});
        EXPECT_EQ(wide.size(), 1000U) << conversion;
        const auto precise = formatLogLine("%-0+ #'" + digits + "." + digits + "ll" + conversion, {7});
        EXPECT_GE(precise.size(), 1000U) << conversion;
        EXPECT_LE(precise.size(), 3000U) << conversion;
    }
    EXPECT_EQ(formatLogLine("%.999999999f", {std::numeric_limits<double>::max()}).size(), 309U + 1U + 1000U);
    EXPECT_EQ(formatLogLine("%" + std::string(100'000, '-') + "d", {7}), "7");
}

}  // namespace

}  // namespace velmora::test
