#pragma once

#include <functional>
#include <string_view>

namespace velmora::platform {

/// Receives each message without prefix or line feed, on the thread that logs.
using LogSink = std::function<void(std::string_view message)>;

/// Writes one line to standard error in one write: local time, process name and number, message. Any thread;
/// never throws, and a line that cannot be written is dropped.
void log(std::string_view message) noexcept;

/// Sends later messages to `sink` instead of standard error; an empty one restores standard error. Returns
/// the sink that was set before.
LogSink setLogSink(LogSink sink);

}  // namespace velmora::platform
