#pragma once

#include "platform/Json.h"

#include <string>

namespace velmora::bench {

/// One suggestion of a video ad as a service sends it: about 1.5 KB.
inline platform::Value suggestion(int number) {
    using platform::Array;
    using platform::Dictionary;
    const auto id = std::to_string(100000 + number);
    const auto tracker = [&](const char* event) {
        const std::string url =
            "https://track.example.com/v/" + std::string(event) + "?s=" + id + "&c=7f3a9b";
        return Array{platform::Value(url)};
    };
    Dictionary tracking;
    for (const char* event : {"start", "firstQuartile", "midpoint", "thirdQuartile", "complete", "mute",
                              "unmute", "fullscreen", "exitFullscreen", "skip", "replay"}) {
        tracking[std::string(event) + "TrackerUrls"] = tracker(event);
    }
    return Dictionary{
        {"callToActionId", "cta-" + id},
        {"suggestionId", "s-" + id},
        {"title", "A game to play on the way"},
        {"description", "<p>Build a <b>city</b>, and lose it again.</p>"},
        {"expirationTimeInMillis", 3600000},
        {"creative",
         Dictionary{{"ctaType", 1},
                    {"ctaUrl", "https://media.example.com/videos/" + id + "/main-720p.mp4"},
                    {"action", Dictionary{{"type", 1}, {"actionUrl", "https://pages.example.com/a/" + id}}},
                    {"skipStartPercentage", Dictionary{{"type", 0}, {"skipStartPercentage", 25.5}}},
                    {"vastTrackingData", tracking}}},
    };
}

/// The text of an answer with so many suggestions.
inline std::string answer(int count) {
    platform::Array suggestions;
    for (int i = 0; i < count; ++i) suggestions.push_back(suggestion(i));
    return platform::writeJson(platform::Dictionary{{"suggestions", suggestions},
                                                    {"selectDirectAdRandomly", false},
                                                    {"velmoraUserId", "u-1"}})
        .value();
}

}  // namespace velmora::bench
