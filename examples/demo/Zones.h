#pragma once

#include <array>

namespace demo {

/// A test zone of the sandbox ad service, as this application presents it.
struct Zone {
    const char* name;
    const char* glyph;
    const char* shows;
};

inline constexpr std::array<Zone, 9> kZones{{
    {"rewarded-video", "★", "A video that earns a reward at its end, then a page"},
    {"video", "▶", "A video, to be seen to its end, then a page"},
    {"skippable-video", "»", "A video with a skip button, then a page"},
    {"banner", "▤", "A page over the whole screen"},
    {"random", "?", "One of several ads, by chance"},
    {"expiring", "◔", "A video that is good for a moment only"},
    {"broken-video", "!", "A video whose file is none"},
    {"no-fill", "–", "The service has no ad"},
    {"unsupported", "×", "Ads that this version cannot show"},
}};

}  // namespace demo
