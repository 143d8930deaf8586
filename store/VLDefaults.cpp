#include "store/VLDefaults.h"

#include "model/RecordOutput.h"
#include "model/VLCachedDoneAdSuggestions.h"
#include "model/VLCachedVelmoraAds.h"
#include "model/VLDoneAdSuggestion.h"
#include "model/VLFinalStatesModel.h"
#include "model/VLRequestQueueImpl.h"
#include "platform/Immortal.h"
#include "platform/Mutex.h"
#include "platform/UserDefaults.h"
#include <velmora/VLAdRequestOptions.h>
#include <velmora/VelmoraAd.h>

#include <algorithm>

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
    if (!text) return defaults().removeObjectForKey(key);
    defaults().setObject(Value(*text), key);
}

template <class Model>
struct Stored {
    std::shared_ptr<Model> record;
    /// Whether it may be changed and written back: a key that is missing, or that holds a dictionary.
    bool isAsExpected = false;
};

template <class Model>
Stored<Model> readRecord(std::string_view key) {
    auto stored = defaults().lookUp(key);
    auto* const dictionary = stored.value ? stored.value->if_object() : nullptr;
    return {recordFrom<Model>(dictionary), dictionary != nullptr || stored.isMissing};
}

template <class Model>
std::shared_ptr<Model> getRecord(std::string_view key) {
    return readRecord<Model>(key).record;
}

template <class Model>
void setRecord(const std::shared_ptr<Model>& record, std::string_view key) {
    if (!record) return defaults().removeObjectForKey(key);
    defaults().setJson(recordToJson(*record), key);
}

/// Reads a record, changes it and writes it back; what is no record stays as it is on the disk.
template <class Model, class Change>
void changeRecord(std::string_view key, const Change& change) {
    defaults().inOneTransaction([&] {
        const auto stored = readRecord<Model>(key);
        if (!stored.isAsExpected) return;
        change(*stored.record);
        setRecord(stored.record, key);
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

bool VLDefaults::getDebugMode() { return defaults().boolForKey(kDebugMode); }

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
    changeRecord<VLFinalStatesModel>(kFinalStates, change);
}

std::shared_ptr<VLCachedDoneAdSuggestions> VLDefaults::getCachedDoneAdSuggestions() {
    return getRecord<VLCachedDoneAdSuggestions>(kCachedDoneAdSuggestions);
}

void VLDefaults::setCachedDoneAdSuggestions(const std::shared_ptr<VLCachedDoneAdSuggestions>& suggestions) {
    setRecord(suggestions, kCachedDoneAdSuggestions);
}

std::shared_ptr<VLCachedVelmoraAds> VLDefaults::getCachedAds() {
    return getRecord<VLCachedVelmoraAds>(kCachedAds);
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
    if (!suggestion) return;
    VLCachedDoneAdSuggestions one;
    one.doneAdSuggestions = makeList<VLDoneAdSuggestion>({suggestion});
    defaults().appendToList("doneAdSuggestions", recordToJson(one), kCachedDoneAdSuggestions);
}

void VLDefaults::removeDoneSuggestionsByIds(const std::optional<std::vector<std::string>>&) {
    // The list that this prunes is that of a new record, not the stored one, and a new record has none.
}

void VLDefaults::removeFinalStatesByIds(const std::optional<std::vector<std::string>>& suggestionIds) {
    if (!suggestionIds) return;
    defaults().inOneTransaction([&] {
        if (!defaults().hasKey(kFinalStates)) return;
        changeFinalStates([&](VLFinalStatesModel& states) {
            std::erase_if(*states.getStates(),
                          [&](const auto& state) { return state->isOfOneOf(*suggestionIds); });
        });
    });
}

void VLDefaults::cacheNewAd(const std::shared_ptr<VelmoraAd>& ad) {
    if (!ad) return;
    VLCachedVelmoraAds one;
    one.cachedVelmoraAds.set(makeList<VelmoraAd>({ad}));
    defaults().appendToList("cachedVelmoraAds", recordToJson(one), kCachedAds);
}

void VLDefaults::removeCachedAd(const std::shared_ptr<VelmoraAd>& ad) {
    const auto id = ad ? ad->getId() : std::nullopt;
    changeRecord<VLCachedVelmoraAds>(kCachedAds, [&](const VLCachedVelmoraAds& record) {
        std::erase_if(*record.cachedVelmoraAds.get(),
                      [&](const auto& one) { return (id && one->getId() == id) || !one->isValid(); });
    });
}

std::shared_ptr<VelmoraAd>
VLDefaults::getValidCachedAdForZone(const std::optional<std::string>& zone,
                                    const std::shared_ptr<VLAdRequestOptions>& andOptions) {
    std::shared_ptr<VelmoraAd> valid;
    changeRecord<VLCachedVelmoraAds>(kCachedAds, [&](const VLCachedVelmoraAds& record) {
        auto& ads = *record.cachedVelmoraAds.get();
        std::erase_if(ads, [](const auto& ad) { return !ad->isValid(); });
        const auto found = std::find_if(ads.begin(), ads.end(), [&](const auto& ad) {
            return matchesZone(*ad, zone) && matchesOptions(*ad, andOptions);
        });
        if (found != ads.end()) valid = *found;
    });
    return valid;
}

}  // namespace velmora
