#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace velmora::sandbox {

/// From which part of the video on a viewer may skip it.
struct SkipRule {
    int type;
    double start;
};

/// How an ad looks and what follows it.
struct Creative {
    std::string_view title;
    int ctaType;
    /// Path of the video or of the page, on this service.
    std::string_view path;
    /// The page after a video; none for a banner.
    std::optional<int> actionType = {};
    std::optional<SkipRule> skip = {};
};

/// A placement, and the ads that the service has for it.
struct Zone {
    std::string_view name;
    std::string_view description;
    std::span<const Creative> creatives;
    bool inRandomOrder = false;
    bool expires = false;
};

[[nodiscard]] std::span<const Zone> allZones();

/// A name that no zone has answers like "video".
[[nodiscard]] const Zone& zoneNamed(std::string_view name);

}  // namespace velmora::sandbox
