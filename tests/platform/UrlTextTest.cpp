#include "platform/UrlText.h"

#include "platform/Utf8.h"
#include "support/OddUrls.h"

#include <random>
#include <sstream>
#include <vector>

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
        {"velmora://open?#x", ""},
        {"velmora://open?#?a=1", ""},
        {"?", ""},
        {"?&&", "||"},
        {"?=", "="},
        {"?a", "a"},
        {"?a=1&b=%00&c=x%00y&d=2", "a=1|b|c|d=2"},
        {"?a=%FF&b=%C0%80&c=%ED%A0%80&d=%C3%A4", "a|b|c|d=ä"},
        {"?%00=1&%FF=2&a=3", "a=3"},
        {"?a=%zz", std::nullopt},
        {"?a=%", std::nullopt},
        {"vl://open?type=1#f?b=2", "type=1"},
        {"?a=1", "a=1"},
        {"", std::nullopt},
        {"https://h/p", std::nullopt},
        {"https://h/p#?a=1", std::nullopt},
        {"https://h/p?a=%2", std::nullopt},
        {"velmora://open?target=http://x/?ids[]=3&[=]", "target=http://x/?ids[]=3|[=]"},
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

TEST(UrlText, WhatIsEncodedIsReadAsItWas) {
    // Mostly what queries are made of, and now and then any byte.
    constexpr std::string_view kUsual = "ab%2F&&==[]#?/:+ ~\"|";
    std::mt19937 random(1);
    const auto below = [&](std::size_t end) { return random() % end; };
    const auto readable = [](std::string_view text) {
        return platform::isUtf8(text) && text.find('\0') == std::string_view::npos;
    };
    for (int round = 0; round < 20'000; ++round) {
        std::string text;
        for (auto length = below(24); length > 0; --length)
            text += below(8) > 0 ? kUsual[below(kUsual.size())] : static_cast<char>(below(256));
        const auto mark = text.substr(0, text.find('#')).find('?');
        EXPECT_EQ(platform::queryItems(text).has_value(), platform::isUrl(text) && mark != std::string::npos)
            << text;

        const auto url = "/?" + percentEncoded(text, UrlCharacters::queryAllowed);
        EXPECT_TRUE(platform::isUrl(url)) << url;

        std::vector<std::string> expected;
        std::stringstream pairs(text + '&');
        for (std::string pair; std::getline(pairs, pair, '&');) {
            const auto name = pair.substr(0, pair.find('='));
            if (!readable(name)) continue;
            const bool hasValue = name.size() < pair.size() && readable(pair.substr(name.size() + 1));
            expected.push_back(hasValue ? pair : name);
        }
        const auto items = platform::queryItems(url).value();
        std::vector<std::string> read;
        for (const auto& [name, value] : items) read.push_back(value ? name + '=' + *value : name);
        EXPECT_EQ(read, expected) << url;
    }
}

TEST(UrlText, WhatIsAUrlIsDecidedByItsBytesItsPercentSignsAndItsAuthority) {
    const struct {
        bool areUrls;
        std::string words;
    } cases[] = {
        {true, "a /p?q#f //h:1 ? # http://h http://[::1]:8080/ http://u:p@h:65535/a//b/ http://h:/ http:///x "
               "file:///a%20b tel:+98 sms:1&body=a mailto:a@b?subject=c a: http://%D8%B3/ HTTP://H"},
        {false, "http://h/%g0 http://h/%0g ?%zz #%zz http://%zz/ http://u%zz@h/ http://h:65536/ http://h:x/ "
                "http://[::1 http://[h]/ http://%FF/ http://h/\x7F"},
    };
    for (const auto& [areUrls, words] : cases) {
        std::istringstream urls(words);
        for (std::string url; urls >> url;) EXPECT_EQ(platform::isUrl(url), areUrls) << url;
    }
    EXPECT_FALSE(platform::isUrl(""));
    for (const auto& url : oddUrls("http://h/")) EXPECT_TRUE(platform::isUrl(url)) << url;
    for (const auto& url : noUrls("http://h/")) EXPECT_FALSE(platform::isUrl(url)) << url;
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
