#include "sandbox/Vast.h"

#include "sandbox/Suggestions.h"

#include <algorithm>

namespace velmora::sandbox {

namespace {

/// The events that both versions know.
constexpr std::string_view kEvents[]{"creativeView",  "start",    "firstQuartile", "midpoint",
                                     "thirdQuartile", "complete", "mute",          "unmute",
                                     "pause",         "resume",   "fullscreen"};

constexpr double kPercent = 100;

std::string escaped(std::string_view text) {
    std::string safe;
    for (const char c : text) {
        switch (c) {
        case '&': safe += "&amp;"; break;
        case '<': safe += "&lt;"; break;
        case '>': safe += "&gt;"; break;
        case '"': safe += "&quot;"; break;
        default: safe += c;
        }
    }
    return safe;
}

std::string element(const std::string& name, std::string_view text, const std::string& attributes = {}) {
    return "<" + name + attributes + ">" + escaped(text) + "</" + name + ">";
}

std::string tracking(const VastAd& ad, std::string_view event) {
    return element("Tracking", trackerUrl(ad.origin, ad.suggestionId, event),
                   " event=\"" + std::string(event) + "\"");
}

std::string trackingEvents(const VastAd& ad, VastVersion version) {
    std::string events;
    for (const auto event : kEvents) events += tracking(ad, event);
    if (version == VastVersion::v2) return events;
    return events + tracking(ad, "exitFullscreen") + tracking(ad, "skip") +
           element("Tracking", trackerUrl(ad.origin, ad.suggestionId, "progress-5s"),
                   " event=\"progress\" offset=\"00:00:05\"");
}

std::string skipOffset(const VastAd& ad, const Creative& creative, VastVersion version) {
    if (version == VastVersion::v2 || !ad.maySkip || !creative.skip) return {};
    return " skipoffset=\"" + std::to_string(static_cast<int>(creative.skip->start * kPercent)) + "%\"";
}

std::string linear(const VastAd& ad, const Creative& creative, VastVersion version) {
    const bool upright = creative.path.find("portrait") != std::string_view::npos;
    return "<Linear" + skipOffset(ad, creative, version) + "><Duration>00:00:08</Duration><TrackingEvents>" +
           trackingEvents(ad, version) + "</TrackingEvents><VideoClicks>" +
           element("ClickThrough", actionPageUrl(ad.origin, ad.zone, ad.suggestionId)) +
           element("ClickTracking", trackerUrl(ad.origin, ad.suggestionId, "click")) +
           "</VideoClicks><MediaFiles>" +
           element("MediaFile", ad.origin + std::string(creative.path),
                   std::string(" delivery=\"progressive\" type=\"video/mp4\"") +
                       (upright ? " width=\"720\" height=\"1280\"" : " width=\"1280\" height=\"720\"")) +
           "</MediaFiles></Linear>";
}

}  // namespace

std::string vastDocument(const VastAd& ad, VastVersion version) {
    const auto number = version == VastVersion::v2 ? "2.0" : "3.0";
    const auto head =
        std::string(R"(<?xml version="1.0" encoding="UTF-8"?>)") + "<VAST version=\"" + number + "\">";
    const auto& creatives = ad.zone.creatives;
    const auto video = std::find_if(creatives.begin(), creatives.end(), [](const Creative& creative) {
        return creative.path.starts_with("/media/");
    });
    if (video == creatives.end()) return head + "</VAST>";
    return head + "<Ad id=\"" + escaped(ad.suggestionId) + "\"><InLine>" +
           element("AdSystem", "Velmora sandbox", " version=\"3.0\"") + element("AdTitle", video->title) +
           element("Error", trackerUrl(ad.origin, ad.suggestionId, "error")) +
           element("Impression", trackerUrl(ad.origin, ad.suggestionId, "impression")) +
           "<Creatives><Creative>" + linear(ad, *video, version) +
           "</Creative></Creatives></InLine></Ad></VAST>";
}

}  // namespace velmora::sandbox
