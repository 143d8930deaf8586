#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Log.h"

namespace velmora::test {

/// Takes the platform's log lines while it lives, in place of standard error.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    [[nodiscard]] std::vector<std::string> lines() const;
    /// Whether one of the lines contains `part`.
    [[nodiscard]] bool has(std::string_view part) const;

    [[nodiscard]] bool empty() const { return lines().empty(); }

    void clear();

private:
    struct Shared;
    std::shared_ptr<Shared> shared_;
    platform::LogSink previous_;
};

}  // namespace velmora::test
