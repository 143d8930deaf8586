#include "platform/Json.h"

#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

using platform::Array;
using platform::Dictionary;
using platform::kDeepestJson;
using platform::parseJson;
using platform::Value;
using platform::writeJson;

std::string repeated(std::string_view text, std::size_t times) {
    std::string result;
    for (std::size_t i = 0; i < times; ++i) result += text;
    return result;
}

Value nestedArrays(std::size_t depth) {
    Value value = Array();
    for (std::size_t i = 1; i < depth; ++i) {
        Array outer;
        outer.push_back(std::move(value));
        value = std::move(outer);
    }
    return value;
}

TEST(Json, EveryDoubleComesBackAsItself) {
    std::mt19937_64 random(1);
    Array numbers{25.0, -0.0, 0.1, std::numeric_limits<double>::denorm_min(),
                  std::numeric_limits<double>::max()};
    while (numbers.size() < 100'000) {
        const auto number = std::bit_cast<double>(random());
        if (std::isfinite(number)) numbers.emplace_back(number);
    }
    const auto read = parseJson(writeJson(Value(numbers)).value()).value();

    ASSERT_EQ(read.as_array().size(), numbers.size());
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const auto& number = read.as_array()[i];
        ASSERT_TRUE(number.is_double()) << numbers[i];
        ASSERT_EQ(std::bit_cast<std::uint64_t>(number.get_double()),
                  std::bit_cast<std::uint64_t>(numbers[i].get_double()))
            << numbers[i];
    }
}

TEST(Json, WhatJsonCannotSayIsLeftOutOrMended) {
    const auto nan = std::numeric_limits<double>::quiet_NaN();
    const auto infinity = std::numeric_limits<double>::infinity();

    const struct {
        Value value;
        std::optional<std::string> text;
    } cases[] = {
        {nan, std::nullopt},
        {-infinity, std::nullopt},
        {Array{Dictionary{{"a", nan}}, 1}, "[{},1]"},
        {Dictionary{{"a", nan}, {"b", Array{-infinity}}, {"c", nullptr}}, R"({"b":[],"c":null})"},
        {"a\xFF z", "\"a\uFFFD z\""},
        {"\xE2(\xA1", "\"\uFFFD(\uFFFD\""},
        {"\xED\xA0\x80", "\"\uFFFD\""},
        {Dictionary{{"\x80", Array{"\xFE", "سلام"}}}, "{\"\uFFFD\":[\"\uFFFD\",\"سلام\"]}"},
        {boost::json::string_view("a\0\n\"", 4), R"("a\u0000\n\"")"},
    };

    for (const auto& [value, text] : cases) EXPECT_EQ(writeJson(value), text);

    EXPECT_EQ(writeJson(Dictionary{{"a", infinity}}), "{}");
    EXPECT_EQ(writeJson(parseJson("[1e400, -1e400]").value()), "[]");
    EXPECT_EQ(parseJson("1e-400"), Value(0.0));
}

TEST(Json, EveryByteIsWrittenSafelyWhereverItStands) {
    // Longer than what a writer may look at in one go.
    for (const std::size_t size : {1U, 7U, 8U, 9U, 20U}) {
        for (std::size_t at = 0; at < size; ++at) {
            for (int byte = 0; byte < 256; ++byte) {
                std::string text(size, 'x');
                text[at] = static_cast<char>(byte);
                const auto written = writeJson(Value(text));
                ASSERT_TRUE(written);
                if (byte >= 0x80) text.replace(at, 1, "\uFFFD");
                ASSERT_EQ(parseJson(*written), Value(text)) << *written;
            }
        }
    }
}

TEST(Json, TextThatIsNotJsonIsAbsent) {
    const char* refused[] = {
        "", " ", "[1,", "[1,]", "[1", R"({"a":)", R"({"a"})", R"({"a":1,})", "{a:1}", R"({"a":1)", "nul",
        "nulll", "True", "\"abc", "'a'", "01", "+1", "1.", ".5", "1e", "-", "NaN", "Infinity", "-Infinity",
        "0x10", "[1]x", "{} {}", "1 2", "//\n1", "/**/1", "\"\t\"", R"("\x")", R"("\u12")", R"("\ud800")",
        "\xEF\xBB\xBF", "\xEF\xBB\xBF\xEF\xBB\xBF{}", " \xEF\xBB\xBF{}", "\xEF\xBB{}",
        // Not UTF-8: a stray byte, an overlong form, half a pair, beyond the last character, cut off.
        "\"\xFF\"", "\"\xC0\xAF\"", "\"\xED\xA0\x80\"", "\"\xF4\x90\x80\x80\"", "\"\xE2\x82\"",
        "{\"\x80\":1}", "[\"\xE2\x82"};
    for (const char* text : refused) EXPECT_FALSE(parseJson(text)) << text;
    EXPECT_FALSE(parseJson(std::string_view("1\0", 2)));
    for (const char* text : {" \r\n\t[ 1 , {} ] \n", "\xEF\xBB\xBF[1,{}]", "\xEF\xBB\xBF [1, {}]"})
        EXPECT_EQ(parseJson(text), Value({1, Dictionary()})) << text;
    EXPECT_EQ(parseJson(R"("\ud83d\ude00\u0000\/")"), Value(boost::json::string_view("😀\0/", 6)));
}

TEST(Json, NestingEndsAt512BothWays) {
    for (const std::size_t depth : {kDeepestJson, kDeepestJson + 1, std::size_t{1'000'000}}) {
        SCOPED_TRACE(depth);
        const bool fits = depth <= kDeepestJson;
        const auto arrays = repeated("[", depth) + repeated("]", depth);
        EXPECT_EQ(parseJson(arrays).has_value(), fits);
        EXPECT_EQ(parseJson(repeated("{\"a\":", depth - 1) + "{}" + repeated("}", depth - 1)).has_value(),
                  fits);
        EXPECT_FALSE(parseJson(repeated("[", depth)));
        if (depth > 10'000) continue;

        const auto value = nestedArrays(depth);
        EXPECT_EQ(writeJson(value), fits ? std::optional(arrays) : std::nullopt);
        EXPECT_EQ(writeJson(Dictionary{{"a", value}}).has_value(), depth + 1 <= kDeepestJson);
        // The way through mending keeps the same bound.
        EXPECT_EQ(writeJson(Array{"\xFF", value}).has_value(), depth + 1 <= kDeepestJson);
    }
}

}  // namespace

}  // namespace velmora::test
