#include "sandbox/Vast.h"

#include "sandbox/Suggestions.h"

#include <algorithm>

namespace velmora::sandbox {

namespace {

constexpr std::string_view kEvents[]{"creativeView",  "start",    "firstQuartile", "midpoint",
                                     "thirdQuartile", "complete", "mute",          "unmute",
                                     "pause",         "resume",   "fullscreen",    "skip"};

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

std::string trackingEvents(const std::string& origin, const std::string& id) {
    std::string events;
    for (const auto event : kEvents) {
        events += element("Tracking", trackerUrl(origin, id, event), " event=\"" + std::string(event) + "\"");
    }
    return events + element("Tracking", trackerUrl(origin, id, "progress-5s"),
                            " event=\"progress\" offset=\"00:00:05\"");
}

std::string linear(const Zone& zone, const Creative& creative, const std::string& origin,
                   const std::string& id) {
    const auto skip = creative.skip ? " skipoffset=\"" +
                                          std::to_string(static_cast<int>(creative.skip->start * 100)) + "%\""
                                    : "";
    const bool upright = creative.path.find("portrait") != std::string_view::npos;
    return "<Linear" + skip + "><Duration>00:00:08</Duration><TrackingEvents>" + trackingEvents(origin, id) +
           "</TrackingEvents><VideoClicks>" + element("ClickThrough", actionPageUrl(origin, zone, id)) +
           element("ClickTracking", trackerUrl(origin, id, "click")) + "</VideoClicks><MediaFiles>" +
           element("MediaFile", origin + std::string(creative.path),
                   std::string(" delivery=\"progressive\" type=\"video/mp4\"") +
                       (upright ? " width=\"720\" height=\"1280\"" : " width=\"1280\" height=\"720\"")) +
           "</MediaFiles></Linear>";
}

}  // namespace

std::string vastDocument(const Zone& zone, const std::string& origin, const std::string& suggestionId) {
    const std::string head = R"(<?xml version="1.0" encoding="UTF-8"?><VAST version="3.0">)";
    const auto video =
        std::find_if(zone.creatives.begin(), zone.creatives.end(),
                     [](const Creative& creative) { return creative.path.starts_with("/media/"); });
    if (video == zone.creatives.end()) return head + "</VAST>";
    return head + "<Ad id=\"" + escaped(suggestionId) + "\"><InLine>" +
           element("AdSystem", "Velmora sandbox", " version=\"3.0\"") + element("AdTitle", video->title) +
           element("Error", trackerUrl(origin, suggestionId, "error")) +
           element("Impression", trackerUrl(origin, suggestionId, "impression")) + "<Creatives><Creative>" +
           linear(zone, *video, origin, suggestionId) + "</Creative></Creatives></InLine></Ad></VAST>";
}

}  // namespace velmora::sandbox
