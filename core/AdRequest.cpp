#include "core/AdRequest.h"

#include "core/LogFormat.h"
#include "core/VLLog.h"
#include "core/VelmoraAdState.h"
#include "core/VelmoraManager.h"
#include "device/VLUserExtraInfoModel.h"
#include "model/VLAdSuggestion.h"
#include "model/VLDefaults.h"
#include "model/VLDirectAdSuggestionRequestJsonParams.h"
#include "model/VLDirectCreativeModel.h"
#include "model/VLFinalStatesModel.h"
#include "model/VLSuggestionListDirectResponseModel.h"
#include "net/VLInternetCacher.h"
#include "net/VLWebServices.h"
#include "platform/CallOut.h"
#include "platform/Clock.h"
#include "platform/MainQueue.h"
#include "platform/UserDefaults.h"

#include <chrono>
#include <utility>

namespace velmora {

namespace {

constexpr std::int64_t kInitialState = 2;
constexpr std::int64_t kCached = 1;
constexpr std::int64_t kStreamed = 2;

/// What follows the last slash; the whole of a URL without one.
std::optional<std::string> lastPieceOf(const std::optional<std::string>& url) {
    if (!url) return std::nullopt;
    return url->substr(url->rfind('/') + 1);
}

/// The states of this answer take the place of those that were sent with the request.
void replaceFinalStates(const VLSuggestionListDirectResponseModel& answer) {
    const auto states = answer.extractFinalStateWithInitialState(kInitialState);
    states->updateFilteredSuggestionIds(answer.getUnnecessarySuggestionIds());
    VLDefaults::removeAllFinalStates();
    VLDefaults::setFinalStates(states);
}

}  // namespace

AdRequest::AdRequest(std::optional<std::string> zone, std::shared_ptr<VLAdRequestOptions> options,
                     Callbacks callbacks)
    : zone_(std::move(zone)), options_(std::move(options)), callbacks_(std::move(callbacks)) {}

void AdRequest::send() {
    const auto body = std::make_shared<VLDirectAdSuggestionRequestJsonParams>(
        options_->getCacheType(), zone_, VLDefaults::getFinalStates(), VLUserExtraInfoModel::getInstance());
    const auto self = shared_from_this();
    VLWebServices::getAdSuggestionsWithBody(
        body, [self](const auto& answer) { self->onAnswer(answer); },
        [self](const VLClientError& error) { self->onFailure(error); });
}

void AdRequest::onAnswer(const std::shared_ptr<VLSuggestionListDirectResponseModel>& answer) {
    const auto cacheType = options_->getCacheTypeNumber();
    Suggestion suggestion;
    std::shared_ptr<VelmoraAd> streamed;
    {
        const platform::UserDefaults::Batch batch(platform::UserDefaults::standard());
        replaceFinalStates(*answer);
        if (const auto user = platform::asString(answer->velmoraUserId)) VLDefaults::setVelmoraUserId(user);
        suggestion = choose(answer);
        if (suggestion && cacheType == kStreamed) streamed = storeStreamed(suggestion);
    }
    if (!suggestion) return callOnNoAdAvailable();
    if (streamed) {
        callOnAdAvailable(streamed);
        return armExpiry(streamed, suggestion);
    }
    if (cacheType == kCached) return offerDownloaded(suggestion);
    callOnError("Unsupported cache type.");
}

AdRequest::Suggestion AdRequest::choose(const std::shared_ptr<VLSuggestionListDirectResponseModel>& answer) {
    if (platform::asBool(answer->selectDirectAdRandomly)) answer->shuffleSuggestions();
    const auto suggestion = VelmoraManager::getMostSuitableAdInSuggestionList(answer);
    if (!suggestion) {
        VLLog("Suitable ad not found :(");
        return nullptr;
    }
    VLLog("Suitable ad found");
    suggestion->reportAdIsFilled();
    return suggestion->creative && suggestion->creative->ctaType ? suggestion : nullptr;
}

std::shared_ptr<VelmoraAd> AdRequest::storeStreamed(const Suggestion& suggestion) const {
    VLLog("Streamed no need to download");
    auto ad = makeAd(suggestion, std::nullopt);
    VLDefaults::cacheNewAd(ad);
    return ad;
}

void AdRequest::onFailure(const VLClientError& error) const {
    const auto domain = error.error ? std::optional(error.error->domain) : std::nullopt;
    callOnError(
        formatLogLine("Error fetching data from server, code:%li ,error:%@", {error.responseCode(), domain}));
}

void AdRequest::offerDownloaded(const Suggestion& suggestion) {
    VLLog("downloading video file");
    const auto url = platform::asString(suggestion->creative->ctaUrl);
    const auto self = shared_from_this();
    VLInternetCacher::sharedCacher().getFileAsyncFromUrl(
        url, lastPieceOf(url),
        [self, suggestion](const std::string&, const std::string& localPath) {
            self->offerThenStore(suggestion, localPath);
        },
        [self, suggestion](const std::optional<std::string>&, const std::string&) {
            VLLog("Download Failed");
            self->options_->setCacheType(kStreamed);
            self->offerThenStore(suggestion, std::nullopt);
        });
}

void AdRequest::offerThenStore(const Suggestion& suggestion,
                               const std::optional<std::string>& videoFilePath) {
    const auto ad = makeAd(suggestion, videoFilePath);
    callOnAdAvailable(ad);
    VLDefaults::cacheNewAd(ad);
    armExpiry(ad, suggestion);
}

std::shared_ptr<VelmoraAd> AdRequest::makeAd(const Suggestion& suggestion,
                                             const std::optional<std::string>& videoFilePath) const {
    auto ad = std::make_shared<VelmoraAd>();
    auto& state = ad->state();
    state.setAd(suggestion);
    state.setCacheTime(platform::nowInMilliseconds());
    state.setZoneId(zone_);
    state.setAdRequestOptions(options_);
    state.setVideoFilePath(videoFilePath);
    return ad;
}

void AdRequest::armExpiry(const std::shared_ptr<VelmoraAd>& ad, const Suggestion& suggestion) {
    if (!suggestion->expirationTimeInMillis) return;
    const auto delay = std::chrono::milliseconds(platform::asInteger(suggestion->expirationTimeInMillis));
    platform::MainQueue::after(delay, [self = shared_from_this(), ad] {
        platform::callOut("onExpiring", [&] { self->callbacks_.onExpiring(ad); });
    });
}

void AdRequest::callOnAdAvailable(const std::shared_ptr<VelmoraAd>& ad) const {
    platform::callOut("onAdAvailable", [&] { callbacks_.onAdAvailable(ad); });
}

void AdRequest::callOnNoAdAvailable() const {
    platform::callOut("onNoAdAvailable", [&] { callbacks_.onNoAdAvailable(); });
}

void AdRequest::callOnError(const std::string& message) const {
    platform::callOut("onError", [&] { callbacks_.onError(message); });
}

}  // namespace velmora
