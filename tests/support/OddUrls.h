#pragma once

#include <string>
#include <vector>

namespace velmora::test {

/// What looks like a URL and is none, made of the beginning of one. All that takes a URL refuses each.
inline std::vector<std::string> noUrls(const std::string& begin) {
    std::vector<std::string> urls;
    for (const char* end : {"p|q", "a b", "\"", "<", "{}", "\\", "^", "`", "%", "%2", "%zz", "\n", "س"})
        urls.push_back(begin + end);
    urls.push_back(begin + std::string("\0x", 2));
    return urls;
}

/// What looks odd and is a URL all the same. All that takes a URL takes each.
inline std::vector<std::string> oddUrls(const std::string& begin) {
    std::vector<std::string> urls;
    for (const char* end : {"[1]", "?q[]=2&%5B=%25", "?#x", "'$(x);*,~", "%D8%A7%20", "?a?b/c#d/e?f"})
        urls.push_back(begin + end);
    return urls;
}

}  // namespace velmora::test
