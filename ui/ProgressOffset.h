#pragma once

#include <string>

namespace velmora {

/// Whether a tracker at this offset is due, at a playback time in seconds and a progress from 0 to 1. An
/// offset that is in none of the known forms is never due.
///
/// Two of the forms compare as they do on purpose: "hh:mm:ss" takes its milliseconds for seconds, and "n%"
/// takes its percents for whole videos.
[[nodiscard]] bool isProgressOffsetDue(const std::string& offset, float progress, float currentTime);

}  // namespace velmora
