#pragma once

#include "sandbox/Zones.h"

#include <atomic>
#include <chrono>
#include <string>

#include <boost/json.hpp>

namespace velmora::sandbox {

/// Makes the answers that offer ads. Any thread.
class Suggestions {
public:
    explicit Suggestions(std::chrono::milliseconds expiringAfter);

    /// The zone's ads as a suggestion list, each under an identifier that no answer had before. Every URL in
    /// it begins with `origin`.
    [[nodiscard]] boost::json::object listFor(const Zone& zone, const std::string& origin);

    /// The name of a zone and a number: "video-7".
    [[nodiscard]] std::string nextIdFor(const Zone& zone);

private:
    [[nodiscard]] boost::json::object suggestion(const Zone& zone, const Creative& creative,
                                                 const std::string& origin);

    const std::chrono::milliseconds expiringAfter_;
    std::atomic<std::uint64_t> count_ = 0;
};

/// Where an event of a suggestion is reported to.
[[nodiscard]] std::string trackerUrl(const std::string& origin, const std::string& suggestionId,
                                     std::string_view event);
/// The page that follows the videos of a zone.
[[nodiscard]] std::string actionPageUrl(const std::string& origin, const Zone& zone,
                                        const std::string& suggestionId);
/// The zone that a suggestion's identifier was made for; absent for any other text.
[[nodiscard]] std::optional<std::string> zoneOfSuggestion(const std::string& suggestionId);

}  // namespace velmora::sandbox
