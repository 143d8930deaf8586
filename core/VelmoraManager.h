#pragma once

#include <velmora/velmora.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace velmora {

class VLAdSuggestion;
class VLSuggestionListDirectResponseModel;

/// What stands behind the facade: the request for an ad, and the callback for the end of a showing.
class VelmoraManager {
public:
    VelmoraManager() = delete;

    /// The library's version.
    [[nodiscard]] static std::string sdkVersion();

    /// Replaces the callback set before; an empty one clears it.
    static void setAdShowFinishedCallback(OnAdShowFinished callback);

    /// Has the callback called, if there is one then, on the main queue.
    static void onAdShowFinished(const std::shared_ptr<VelmoraAd>& ad, bool completed);

    /// Always null: the place where a later version returns a stored ad that is still valid.
    [[nodiscard]] static std::shared_ptr<VelmoraAd>
    getValidCachedAdForZone(const std::optional<std::string>& zone);
    [[nodiscard]] static std::shared_ptr<VelmoraAd>
    getValidCachedAdForZone(const std::optional<std::string>& zone, std::int64_t withCacheType);

    /// The first suggestion that is meant for this user and can be shown; the others that are not leave the
    /// list. Null when there is none, or no list.
    [[nodiscard]] static std::shared_ptr<VLAdSuggestion>
    getMostSuitableAdInSuggestionList(const std::shared_ptr<VLSuggestionListDirectResponseModel>& list);

    /// Asks the service for an ad and returns at once. All four callbacks are there, and options.
    static void requestAdForZone(const std::optional<std::string>& zone,
                                 const std::shared_ptr<VLAdRequestOptions>& andOptions,
                                 const OnAdAvailable& onAdAvailable, const OnNoAdAvailable& onNoAdAvailable,
                                 const OnError& onError, const OnExpiring& onExpiring);
};

}  // namespace velmora
