#include "platform/Value.h"

#include "platform/Json.h"
#include "platform/Random.h"

#include <array>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

using platform::Array;
using platform::Dictionary;
using platform::Property;
using platform::Value;

constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();
constexpr auto kInfinity = std::numeric_limits<double>::infinity();

TEST(Value, EveryKindCanBeReadAsEveryOther) {
    const struct {
        Property property;
        std::int64_t integer;
        double number;
        bool flag;
        std::string description;
    } cases[] = {
        {25.0, 25, 25, true, "25"},
        {-7.9, -7, -7.9, true, "-7.9"},
        {0.1, 0, 0.1, true, "0.1"},
        {kLeast, kLeast, -0x1p63, true, "-9223372036854775808"},
        {std::uint64_t{18446744073709551615U}, kMost, 0x1p64, true, "18446744073709551615"},
        {0x1.fffffffffffffp62, 9223372036854774784, 0x1.fffffffffffffp62, true, "9223372036854774784"},
        {0x1p63, kMost, 0x1p63, true, "9223372036854775808"},
        {-kInfinity, kLeast, -kInfinity, true, "-inf"},
        {true, 1, 1, true, "1"},
        {false, 0, 0, false, "0"},
        {nullptr, 0, 0, false, "<null>"},
        {Array{1, "a", nullptr}, 0, 0, false, R"([1,"a",null])"},
        {Dictionary{{"a", true}}, 0, 0, false, R"({"a":true})"},
    };

    for (const auto& [property, integer, number, flag, description] : cases) {
        SCOPED_TRACE(description);
        EXPECT_EQ(platform::asInteger(property), integer);
        EXPECT_EQ(platform::asDouble(property), number);
        EXPECT_EQ(platform::asBool(property), flag);
        EXPECT_EQ(platform::asString(property), std::nullopt);
        EXPECT_EQ(platform::description(*property), description);
    }
    EXPECT_EQ(platform::asInteger(Property(std::nan(""))), 0);

    const Property absent;
    EXPECT_EQ(platform::asInteger(absent), 0);
    EXPECT_EQ(platform::asDouble(absent), 0);
    EXPECT_FALSE(platform::asBool(absent));
    EXPECT_FALSE(platform::asString(absent));
}

TEST(Value, ATextIsReadAsItsLeadingNumber) {
    const struct {
        std::vector<std::string> texts;
        std::int64_t integer;
        double number;
        bool flag;
    } cases[] = {
        {{"", " ", "0.00", "-0", "0x1F", "+-7", "-+7", "--7", "+ 7", "-", "+", ".", "abc12"}, 0, 0, false},
        {{"NO", "false", "inf", "-Infinity", "nan", "۷"}, 0, 0, false},
        {{"YES", "yes", " True", "t"}, 0, 0, true},
        {{"12abc", " +12", "012"}, 12, 12, true},
        {{"\t\n-7.5 s"}, -7, -7.5, true},
        {{"1e3"}, 1, 1000, true},
        {{".5", "0.5"}, 0, 0.5, false},
        {{"-.5x"}, 0, -0.5, false},
        {{"9223372036854775807"}, kMost, 0x1p63, true},
        {{"99999999999999999999"}, kMost, 1e20, true},
        {{"-99999999999999999999"}, kLeast, -1e20, true},
        {{"1e-400"}, 1, 0, true},
    };

    for (const auto& [texts, integer, number, flag] : cases) {
        for (const auto& text : texts) {
            SCOPED_TRACE(text);
            const Property property = Value(text);
            EXPECT_EQ(platform::asInteger(property), integer);
            EXPECT_EQ(platform::asDouble(property), number);
            EXPECT_EQ(platform::asBool(property), flag);
            EXPECT_EQ(platform::asString(property), text);
            EXPECT_EQ(platform::description(*property), text);
        }
    }
}

TEST(Value, EqualityIsOfNumberWithNumberAndTextWithText) {
    const std::pair<Property, std::int64_t> equal[] = {{2, 2}, {2.0, 2}, {true, 1}, {false, 0}};
    const std::pair<Property, std::int64_t> different[] = {
        {2.5, 2},
        {"2", 2},
        {nullptr, 0},
        {std::nullopt, 0},
        {Array{}, 0},
        {std::nan(""), 0},
        {std::uint64_t{18446744073709551615U}, -1},
        // Neighbours that one double stands for.
        {std::int64_t{9007199254740993}, 9007199254740992},
    };

    for (const auto& [property, number] : equal) EXPECT_TRUE(platform::equals(property, number)) << number;
    for (const auto& [property, number] : different) {
        EXPECT_FALSE(platform::equals(property, number)) << number;
    }
    EXPECT_TRUE(platform::equals(Property("2"), "2"));
    for (const auto& property : {Property("2 "), Property(2), Property(nullptr), Property()}) {
        EXPECT_FALSE(platform::equals(property, "2"));
    }
}

TEST(Value, ADescriptionOfWhatIsNestedTooDeepIsAText) {
    const std::string arrays =
        std::string(platform::kDeepestJson, '[') + std::string(platform::kDeepestJson, ']');
    EXPECT_FALSE(platform::description(Dictionary{{"a", platform::parseJson(arrays).value()}}).empty());
}

TEST(Random, EveryNumberBelowTheBoundComesAndNoOther) {
    EXPECT_EQ(platform::uniformRandom(0), 0U);
    EXPECT_EQ(platform::uniformRandom(1), 0U);

    std::array<int, 5> counts{};
    for (int i = 0; i < 10'000; ++i) ++counts.at(platform::uniformRandom(5));
    // Ten standard deviations around the 2000 of an even spread.
    for (const int count : counts) EXPECT_NEAR(count, 2000, 400);

    bool upperHalf = false;
    for (int i = 0; i < 100; ++i) upperHalf |= platform::uniformRandom(0xFFFFFFFF) > 0x80000000;
    EXPECT_TRUE(upperHalf);
}

}  // namespace

}  // namespace velmora::test
