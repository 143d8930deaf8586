#pragma once

#include "model/VLSerializedModel.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmora {

class VLAdRequestOptions;
class VLCachedDoneAdSuggestions;
class VLCachedVelmoraAds;
class VLDoneAdSuggestion;
class VLFinalStatesModel;
class VLRequestQueueImpl;
class VelmoraAd;

/// What the library keeps across runs of the application, in its user defaults, and the access token, which
/// it does not keep.
///
/// Every getter reads the store and builds a fresh record; every setter writes the whole value. Nothing is
/// kept in memory between two calls, the token excepted. Safe to use from any thread and from several
/// processes: an operation that reads, changes and writes does it in one transaction, so that no change is
/// lost. When the store cannot be had in time, or does not hold what is expected there, it changes nothing.
class VLDefaults {
public:
    VLDefaults() = delete;

    /// Absent when nothing was stored; storing an absent text removes the key.
    [[nodiscard]] static std::optional<std::string> getDeveloperKey();
    static void setDeveloperKey(const std::optional<std::string>& developerKey);
    [[nodiscard]] static std::optional<std::string> getAppUserId();
    static void setAppUserId(const std::optional<std::string>& appUserId);
    [[nodiscard]] static std::optional<std::string> getVelmoraUserId();
    static void setVelmoraUserId(const std::optional<std::string>& velmoraUserId);

    /// False when nothing was stored.
    [[nodiscard]] static bool getDebugMode();
    static void setDebugMode(bool debugMode);

    /// The access token of this process; absent at start.
    [[nodiscard]] static std::optional<std::string> getAuthorization();
    static void setAuthorizationToken(const std::optional<std::string>& token);

    /// The getters never return null, and the lists of their records are empty when nothing was stored.
    /// Storing null removes the key.
    [[nodiscard]] static std::shared_ptr<VLRequestQueueImpl> getRequestQueue();
    static void setRequestQueue(const std::shared_ptr<VLRequestQueueImpl>& requestQueue);
    [[nodiscard]] static std::shared_ptr<VLFinalStatesModel> getFinalStates();
    static void setFinalStates(const std::shared_ptr<VLFinalStatesModel>& finalStates);
    static void removeAllFinalStates();
    /// Hands the stored states to `change` and stores what it makes of them, in one transaction: whatever was
    /// stored meanwhile by others is what it gets. Other writers wait for it, so that nothing slow belongs in
    /// there.
    static void changeFinalStates(const std::function<void(VLFinalStatesModel& states)>& change);
    [[nodiscard]] static std::shared_ptr<VLCachedDoneAdSuggestions> getCachedDoneAdSuggestions();
    static void setCachedDoneAdSuggestions(const std::shared_ptr<VLCachedDoneAdSuggestions>& suggestions);
    [[nodiscard]] static std::shared_ptr<VLCachedVelmoraAds> getCachedAds();
    static void setCachedAds(const std::shared_ptr<VLCachedVelmoraAds>& cachedAds);

    [[nodiscard]] static ModelList<VLDoneAdSuggestion> getDoneAdSuggestions();
    static void setDoneAdSuggestions(const ModelList<VLDoneAdSuggestion>& suggestions);
    /// Appends, without looking for one like it.
    static void addDoneAdSuggestion(const std::shared_ptr<VLDoneAdSuggestion>& suggestion);
    /// Leaves the store as it is: done suggestions are never removed by id.
    static void removeDoneSuggestionsByIds(const std::optional<std::vector<std::string>>& suggestionIds);

    /// Removes every state of one of these suggestions.
    static void removeFinalStatesByIds(const std::optional<std::vector<std::string>>& suggestionIds);

    /// Appends, without looking for one like it.
    static void cacheNewAd(const std::shared_ptr<VelmoraAd>& ad);
    /// Removes every ad with the identifier of this one, and every ad that is no longer valid.
    static void removeCachedAd(const std::shared_ptr<VelmoraAd>& ad);
    /// The oldest valid ad of the zone with the cache type of the options; an absent zone and absent options
    /// match any. Null when there is none. Invalid ads are removed from the store; the one returned stays.
    [[nodiscard]] static std::shared_ptr<VelmoraAd>
    getValidCachedAdForZone(const std::optional<std::string>& zone,
                            const std::shared_ptr<VLAdRequestOptions>& andOptions);
};

}  // namespace velmora
