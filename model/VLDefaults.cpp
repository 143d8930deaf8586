#include "model/VLDefaults.h"

#include "model/RecordOutput.h"
#include "model/VLCachedDoneAdSuggestions.h"
#include "model/VLCachedVelmoraAds.h"
#include "model/VLDoneAdSuggestion.h"
#include "model/VLFinalStatesModel.h"
#include "net/VLRequestQueueImpl.h"
#include "platform/Immortal.h"
#include "platform/Mutex.h"
#include "platform/UserDefaults.h"
#include <velmora/VLAdRequestOptions.h>
#include <velmora/VelmoraAd.h>

#include <algorithm>
#include <array>

namespace velmora {

namespace {

constexpr std::string_view kDeveloperKey = "developerKey";
constexpr std::string_view kAppUserId = "appUserId";
constexpr std::string_view kDebugMode = "debugMode";
constexpr std::string_view kVelmoraUserId = "velmoraUserId";
constexpr std::string_view kRequestQueue = "requestQueue";
constexpr std::string_view kFinalStates = "finalstates";
constexpr std::string_view kCachedDoneAdSuggestions = "cachedDoneAdSuggestions";
constexpr std::string_view kCachedAds = "cachedAds";

platform::UserDefaults& defaults() { return platform::UserDefaults::standard(); }

void setString(const std::optional<std::string>& text, std::string_view key) {
    text ? defaults().setObject(Value(*text), key) : defaults().removeObjectForKey(key);
}

/// Null when the store could not be read; an empty record for a missing key.
template <class Model>
std::shared_ptr<Model> readRecord(std::string_view key) {
    // Most records fit, and are then read without one allocation of the parser's.
    std::array<unsigned char, 8192> room;
    platform::Arena arena(room.data(), room.size());
    const auto stored = defaults().lookUp(key, &arena);
    return stored.wasRead ? recordFrom<Model>(stored.value ? stored.value->if_object() : nullptr) : nullptr;
}

template <class Model>
std::shared_ptr<Model> getRecord(std::string_view key) {
    auto record = readRecord<Model>(key);
    return record ? record : recordFrom<Model>(nullptr);
}

template <class Model>
void setRecord(const std::shared_ptr<Model>& record, std::string_view key) {
    record ? defaults().setJson(recordToJson(*record), key) : defaults().removeObjectForKey(key);
}

/// Reads a record, changes it and writes it back; one that cannot be read stays as it is on the disk.
template <class Model, class Change>
void changeRecord(std::string_view key, const Change& change) {
    const auto record = readRecord<Model>(key);
    if (!record) return;
    change(*record);
    setRecord(record, key);
}

using AdList = std::vector<std::shared_ptr<VelmoraAd>>;

/// Changes the list of the ready ads.
template <class Change>
void changeCachedAds(const Change& change) {
    changeRecord<VLCachedVelmoraAds>(kCachedAds, [&](VLCachedVelmoraAds& record) {
        if (!record.cachedVelmoraAds.get()) record.cachedVelmoraAds.set(makeList<VelmoraAd>());
        change(*record.cachedVelmoraAds.get());
    });
}

bool matchesZone(const VelmoraAd& ad, const std::optional<std::string>& zone) {
    return !zone || ad.getZoneId() == *zone;
}

bool matchesOptions(const VelmoraAd& ad, const std::shared_ptr<VLAdRequestOptions>& options) {
    if (!options) return true;
    const auto own = ad.getRequestOptions();
    return own && own->getCacheType() == options->getCacheType();
}

class Token {
public:
    [[nodiscard]] std::optional<std::string> get() {
        const platform::MutexLock lock(mutex_);
        return token_;
    }

    void set(const std::optional<std::string>& token) {
        const platform::MutexLock lock(mutex_);
        token_ = token;
    }

private:
    platform::Mutex mutex_;
    std::optional<std::string> token_ VELMORA_GUARDED_BY(mutex_);
};

Token& token() {
    static platform::Immortal<Token> instance;
    return *instance;
}

}  // namespace

std::optional<std::string> VLDefaults::getDeveloperKey() { return defaults().stringForKey(kDeveloperKey); }

void VLDefaults::setDeveloperKey(const std::optional<std::string>& developerKey) {
    setString(developerKey, kDeveloperKey);
}

std::optional<std::string> VLDefaults::getAppUserId() { return defaults().stringForKey(kAppUserId); }

void VLDefaults::setAppUserId(const std::optional<std::string>& appUserId) {
    setString(appUserId, kAppUserId);
}

std::optional<std::string> VLDefaults::getVelmoraUserId() { return defaults().stringForKey(kVelmoraUserId); }

void VLDefaults::setVelmoraUserId(const std::optional<std::string>& velmoraUserId) {
    setString(velmoraUserId, kVelmoraUserId);
}

bool VLDefaults::getDebugMode() { return defaults().hasKey(kDebugMode) && defaults().boolForKey(kDebugMode); }

void VLDefaults::setDebugMode(bool debugMode) { defaults().setBool(debugMode, kDebugMode); }

std::optional<std::string> VLDefaults::getAuthorization() { return token().get(); }

void VLDefaults::setAuthorizationToken(const std::optional<std::string>& newToken) { token().set(newToken); }

std::shared_ptr<VLRequestQueueImpl> VLDefaults::getRequestQueue() {
    return getRecord<VLRequestQueueImpl>(kRequestQueue);
}

void VLDefaults::setRequestQueue(const std::shared_ptr<VLRequestQueueImpl>& requestQueue) {
    setRecord(requestQueue, kRequestQueue);
}

std::shared_ptr<VLFinalStatesModel> VLDefaults::getFinalStates() {
    return getRecord<VLFinalStatesModel>(kFinalStates);
}

void VLDefaults::setFinalStates(const std::shared_ptr<VLFinalStatesModel>& finalStates) {
    setRecord(finalStates, kFinalStates);
}

void VLDefaults::removeAllFinalStates() { defaults().removeObjectForKey(kFinalStates); }

void VLDefaults::changeFinalStates(const std::function<void(VLFinalStatesModel& states)>& change) {
    const platform::UserDefaults::Batch batch(defaults());
    changeRecord<VLFinalStatesModel>(kFinalStates, change);
}

std::shared_ptr<VLCachedDoneAdSuggestions> VLDefaults::getCachedDoneAdSuggestions() {
    return getRecord<VLCachedDoneAdSuggestions>(kCachedDoneAdSuggestions);
}

void VLDefaults::setCachedDoneAdSuggestions(const std::shared_ptr<VLCachedDoneAdSuggestions>& suggestions) {
    setRecord(suggestions, kCachedDoneAdSuggestions);
}

std::shared_ptr<VLCachedVelmoraAds> VLDefaults::getCachedAds() {
    auto cachedAds = getRecord<VLCachedVelmoraAds>(kCachedAds);
    if (!cachedAds->cachedVelmoraAds.get()) cachedAds->cachedVelmoraAds.set(makeList<VelmoraAd>());
    return cachedAds;
}

void VLDefaults::setCachedAds(const std::shared_ptr<VLCachedVelmoraAds>& cachedAds) {
    setRecord(cachedAds, kCachedAds);
}

ModelList<VLDoneAdSuggestion> VLDefaults::getDoneAdSuggestions() {
    return getCachedDoneAdSuggestions()->doneAdSuggestions;
}

void VLDefaults::setDoneAdSuggestions(const ModelList<VLDoneAdSuggestion>& suggestions) {
    auto record = std::make_shared<VLCachedDoneAdSuggestions>();
    record->doneAdSuggestions = suggestions;
    setCachedDoneAdSuggestions(record);
}

void VLDefaults::addDoneAdSuggestion(const std::shared_ptr<VLDoneAdSuggestion>& suggestion) {
    changeRecord<VLCachedDoneAdSuggestions>(kCachedDoneAdSuggestions, [&](auto& record) {
        if (suggestion) record.doneAdSuggestions->push_back(suggestion);
    });
}

void VLDefaults::removeDoneSuggestionsByIds(const std::optional<std::vector<std::string>>&) {
    // The list that this prunes is that of a new record, not the stored one, and a new record has none.
}

void VLDefaults::removeFinalStatesByIds(const std::optional<std::vector<std::string>>& suggestionIds) {
    if (!defaults().hasKey(kFinalStates)) return;
    const auto record = readRecord<VLFinalStatesModel>(kFinalStates);
    const auto states = record ? record->getStates() : nullptr;
    if (!states) return;
    if (suggestionIds) {
        std::erase_if(*states, [&](const auto& state) {
            return platform::isOneOf(state->getSuggestionId(), *suggestionIds);
        });
    }
    setFinalStates(record);
}

void VLDefaults::cacheNewAd(const std::shared_ptr<VelmoraAd>& ad) {
    changeCachedAds([&](AdList& ads) {
        if (ad) ads.push_back(ad);
    });
}

void VLDefaults::removeCachedAd(const std::shared_ptr<VelmoraAd>& ad) {
    const auto id = ad ? ad->getId() : std::nullopt;
    changeCachedAds([&](AdList& ads) {
        std::erase_if(ads, [&](const auto& one) { return (id && one->getId() == id) || !one->isValid(); });
    });
}

std::shared_ptr<VelmoraAd>
VLDefaults::getValidCachedAdForZone(const std::optional<std::string>& zone,
                                    const std::shared_ptr<VLAdRequestOptions>& andOptions) {
    std::shared_ptr<VelmoraAd> valid;
    changeCachedAds([&](AdList& ads) {
        std::erase_if(ads, [](const auto& ad) { return !ad->isValid(); });
        const auto found = std::find_if(ads.begin(), ads.end(), [&](const auto& ad) {
            return matchesZone(*ad, zone) && matchesOptions(*ad, andOptions);
        });
        if (found != ads.end()) valid = *found;
    });
    return valid;
}

}  // namespace velmora
