#pragma once

#include "screen/Page.h"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace velmora::test {

/// A page's delegate that remembers what it was told.
class PageWatcher final : public screen::PageDelegate {
public:
    bool pageShouldStartLoad(const std::string& url) override {
        starts.push_back(url);
        return allow ? allow(url) : true;
    }

    void pageDidFinishLoad(const std::string& url) override {
        ends.push_back(url);
        if (atEnd) atEnd();
    }

    [[nodiscard]] auto startsOf(const std::string& url) const {
        return std::count(starts.begin(), starts.end(), url);
    }

    [[nodiscard]] auto endsOf(const std::string& url) const {
        return std::count(ends.begin(), ends.end(), url);
    }

    std::function<bool(const std::string& url)> allow;
    std::function<void()> atEnd;
    std::vector<std::string> starts;
    std::vector<std::string> ends;
};

}  // namespace velmora::test
