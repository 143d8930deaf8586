#include "platform/UrlText.h"

#include <cctype>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

using platform::percentEncoded;
using platform::UrlCharacters;

TEST(UrlText, EveryAsciiCharacterIsKeptOrEncodedByItsSet) {
    std::string printable;
    for (char c = ' '; c <= '~'; ++c) printable += c;

    EXPECT_EQ(percentEncoded(printable, UrlCharacters::queryAllowed),
              "%20!%22%23$%25&'()*+,-./0123456789:;%3C=%3E?@ABCDEFGHIJKLMNOPQRSTUVWXYZ%5B%5C%5D%5E_%60"
              "abcdefghijklmnopqrstuvwxyz%7B%7C%7D~");
    EXPECT_EQ(percentEncoded(printable, UrlCharacters::hostAllowed),
              "%20!%22%23$%25&'()*+,-.%2F0123456789:;%3C=%3E%3F%40ABCDEFGHIJKLMNOPQRSTUVWXYZ[%5C]%5E_%60"
              "abcdefghijklmnopqrstuvwxyz%7B%7C%7D~");
}

TEST(UrlText, EveryOtherByteIsEncoded) {
    for (const auto allowed : {UrlCharacters::queryAllowed, UrlCharacters::hostAllowed}) {
        EXPECT_EQ(percentEncoded(std::string_view("\0\x1F\x7F\xFF", 4), allowed), "%00%1F%7F%FF");
        EXPECT_EQ(percentEncoded("سلام", allowed), "%D8%B3%D9%84%D8%A7%D9%85");
        EXPECT_EQ(percentEncoded("😀", allowed), "%F0%9F%98%80");
        EXPECT_EQ(percentEncoded("", allowed), "");
    }
}

TEST(UrlText, TheQueryIsReadPairByPair) {
    const struct {
        std::string url;
        std::optional<std::string> pairs;
    } cases[] = {
        {"https://h/p?a=1&b=2&a=3", "a=1|b=2|a=3"},
        {"https://h/p?a&b=&=c", "a|b=|=c"},
        {"https://h/p?a=b=c&&d", "a=b=c||d"},
        {"https://h?q=1+2%2B3%20", "q=1+2+3 "},
        {"https://h/p?%D8%B3=%D8%B3", "س=س"},
        {"https://h/p?u=https://g/?x", "u=https://g/?x"},
        {"https://h/p?a=%00b", std::string("a=\0b", 4)},
        {"vl://open?type=1#f?b=2", "type=1"},
        {"?a=1", "a=1"},
        {"", std::nullopt},
        {"https://h/p", std::nullopt},
        {"https://h/p#?a=1", std::nullopt},
        {"https://h/p?a=%2", std::nullopt},
        {"velmora://open?target=http://x/?ids[]=3", "target=http://x/?ids[]=3"},
        {"https://h/p?a=1 2", std::nullopt},
        {"https://h/p?a=س", std::nullopt},
        {"https://[h/p?a=1", std::nullopt},
        {std::string("https://h/p?a=\0", 15), std::nullopt},
    };

    for (const auto& [url, pairs] : cases) {
        std::optional<std::string> read;
        if (const auto items = platform::queryItems(url)) {
            for (const auto& item : *items) {
                read = read ? *read + "|" : std::string();
                *read += item.name + (item.value ? "=" + *item.value : "");
            }
        }
        EXPECT_EQ(read, pairs) << url;
    }
}

TEST(UrlText, SchemeAndHostAreReadFromTextThatNeedNotBeWellFormed) {
    const struct {
        std::string_view url;
        std::string_view scheme;
        std::optional<std::string_view> host;
    } cases[] = {
        {"a+1.b-c://Host", "a+1.b-c", "Host"},
        {"a://u:p@b@host:80/path?c://d", "a", "host"},
        {"a://host?b", "a", "host"},
        {"a://host#b", "a", "host"},
        {"a://[::1]:80/", "a", "[::1]"},
        {"a://[::1", "a", "[::1"},
        {"a://x y%zz/", "a", "x y%zz"},
        {"a:///b", "a", ""},
        {"a://", "a", ""},
        {"a:", "a", std::nullopt},
        {"a:host", "a", std::nullopt},
        {"a", "", std::nullopt},
        {"1a://b", "", std::nullopt},
        {" a://b", "", std::nullopt},
        {"://b", "", std::nullopt},
        {"", "", std::nullopt},
    };
    for (const auto& [url, scheme, host] : cases) {
        EXPECT_EQ(platform::urlScheme(url), scheme) << url;
        EXPECT_EQ(platform::urlHost(url), host) << url;
    }
}

}  // namespace

}  // namespace velmora::test
