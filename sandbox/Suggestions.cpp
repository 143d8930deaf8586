#include "sandbox/Suggestions.h"

namespace velmora::sandbox {

namespace json = boost::json;

namespace {

struct Event {
    std::string_view list;
    std::string_view name;
};

constexpr Event kEvents[]{
    {"startTrackerUrls", "start"},
    {"firstQuartileTrackerUrls", "firstQuartile"},
    {"midpointTrackerUrls", "midpoint"},
    {"thirdQuartileTrackerUrls", "thirdQuartile"},
    {"completeTrackerUrls", "complete"},
    {"muteTrackerUrls", "mute"},
    {"unmuteTrackerUrls", "unmute"},
    {"fullscreenTrackerUrls", "fullscreen"},
    {"exitFullscreenTrackerUrls", "exitFullscreen"},
    {"skipTrackerUrls", "skip"},
    {"replayTrackerUrls", "replay"},
};

/// One of each form that an offset may have.
constexpr Event kProgress[]{
    {"00:00:02.500", "progress-2500ms"},
    {"00:00:05", "progress-5s"},
    {"50%", "progress-50percent"},
};

constexpr int kStreamed = 2;

json::object trackingData(const std::string& origin, const std::string& id) {
    json::object data;
    for (const auto& event : kEvents) {
        data.emplace(json::string_view(event.list.data(), event.list.size()),
                     json::array{trackerUrl(origin, id, event.name)});
    }
    json::array progress;
    for (const auto& [offset, name] : kProgress) {
        progress.push_back({{"first", std::string(offset)}, {"second", trackerUrl(origin, id, name)}});
    }
    data.emplace("progressTrackingUrls", std::move(progress));
    return data;
}

std::string pageQuery(const Zone& zone, const std::string& id) {
    return "?zone=" + std::string(zone.name) + "&suggestion=" + id;
}

json::object describe(const Zone& zone, const Creative& creative, const std::string& origin,
                      const std::string& id) {
    const bool isVideo = creative.path.starts_with("/media/");
    json::object object{
        {"ctaType", creative.ctaType},
        {"ctaUrl", origin + std::string(creative.path) + (isVideo ? "" : pageQuery(zone, id))}};
    if (creative.actionType) {
        object.emplace("action", json::object{{"type", *creative.actionType},
                                              {"actionUrl", actionPageUrl(origin, zone, id)}});
    }
    if (creative.skip) {
        object.emplace("skipStartPercentage", json::object{{"type", creative.skip->type},
                                                           {"skipStartPercentage", creative.skip->start}});
    }
    if (isVideo) object.emplace("vastTrackingData", trackingData(origin, id));
    return object;
}

}  // namespace

Suggestions::Suggestions(std::chrono::milliseconds expiringAfter) : expiringAfter_(expiringAfter) {}

std::string Suggestions::nextIdFor(const Zone& zone) {
    return std::string(zone.name) + "-" + std::to_string(++count_);
}

json::object Suggestions::suggestion(const Zone& zone, const Creative& creative, const std::string& origin) {
    const auto id = nextIdFor(zone);
    json::object object{{"suggestionId", id},
                        {"callToActionId", "cta-" + std::string(zone.name)},
                        {"title", std::string(creative.title)},
                        {"description", "<p>" + std::string(creative.title) + "</p>"},
                        {"creative", describe(zone, creative, origin, id)}};
    if (zone.expires) object.emplace("expirationTimeInMillis", expiringAfter_.count());
    return object;
}

json::object Suggestions::listFor(const Zone& zone, const std::string& origin) {
    json::array suggestions;
    for (const auto& creative : zone.creatives) suggestions.push_back(suggestion(zone, creative, origin));
    return {{"suggestions", std::move(suggestions)},
            {"selectDirectAdRandomly", zone.inRandomOrder},
            {"serverSuggestedCacheType", kStreamed},
            {"ctaDisabled", false}};
}

std::string trackerUrl(const std::string& origin, const std::string& suggestionId, std::string_view event) {
    return origin + "/track/" + suggestionId + "/" + std::string(event);
}

std::string actionPageUrl(const std::string& origin, const Zone& zone, const std::string& suggestionId) {
    return origin + "/pages/action" + pageQuery(zone, suggestionId);
}

std::optional<std::string> zoneOfSuggestion(const std::string& suggestionId) {
    const auto dash = suggestionId.rfind('-');
    if (dash == std::string::npos) return std::nullopt;
    auto name = suggestionId.substr(0, dash);
    return zoneNamed(name).name == name ? std::optional(std::move(name)) : std::nullopt;
}

}  // namespace velmora::sandbox
