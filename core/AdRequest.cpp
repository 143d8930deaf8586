#include "core/AdRequest.h"

#include "core/RequestCallbacks.h"
#include "core/VelmoraManager.h"
#include "device/VLUserExtraInfoModel.h"
#include "log/LogFormat.h"
#include "log/VLLog.h"
#include "model/VLAdSuggestion.h"
#include "model/VLDirectCreativeModel.h"
#include "model/VLFinalStatesModel.h"
#include "model/VLSuggestionListDirectResponseModel.h"
#include "model/VelmoraAdState.h"
#include "net/VLDirectAdSuggestionRequestJsonParams.h"
#include "net/VLInternetCacher.h"
#include "net/VLWebServices.h"
#include "platform/Clock.h"
#include "platform/MainQueue.h"
#include "platform/UserDefaults.h"
#include "store/VLDefaults.h"

#include <chrono>
#include <utility>

namespace velmora {

namespace {

/// What follows the last slash; the whole of a URL without one.
std::optional<std::string> lastPieceOf(const std::optional<std::string>& url) {
    if (!url) return std::nullopt;
    return url->substr(url->rfind('/') + 1);
}

/// The states of this answer, which take the place of those that were sent with the request.
std::shared_ptr<VLFinalStatesModel> finalStatesOf(const VLSuggestionListDirectResponseModel& answer) {
    auto states = answer.extractFinalStateWithInitialState(VLFinalState::initial);
    states->updateFilteredSuggestionIds(answer.getUnnecessarySuggestionIds());
    return states;
}

}  // namespace

AdRequest::AdRequest(std::optional<std::string> zone, std::shared_ptr<VLAdRequestOptions> options,
                     std::shared_ptr<RequestCallbacks> callbacks)
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
    // Nobody waits for it any more, and what the store holds is for the next one.
    if (callbacks_->isDropped()) return;
    remember(*answer);
    if (answer->isToBeShuffled()) answer->shuffleSuggestions();
    const auto suggestion = VelmoraManager::getMostSuitableAdInSuggestionList(answer);
    if (!suggestion) {
        VLLog("Suitable ad not found :(");
        return callbacks_->noAdIsAvailable();
    }
    VLLog("Suitable ad found");
    suggestion->reportAdIsFilled();
    if (!suggestion->creative || !suggestion->creative->hasType()) return callbacks_->noAdIsAvailable();

    const auto cacheType = options_->getCacheTypeNumber();
    if (cacheType == VLCacheType::cached) return offerDownloaded(suggestion);
    if (cacheType == VLCacheType::streamed) return offerStreamed(suggestion);
    callbacks_->failed("Unsupported cache type.");
}

void AdRequest::remember(const VLSuggestionListDirectResponseModel& answer) {
    // What the store gets is put together before it is asked to hold still.
    const auto states = finalStatesOf(answer);
    const auto user = answer.getUserId();
    platform::UserDefaults::standard().inOneTransaction([&] {
        VLDefaults::removeAllFinalStates();
        VLDefaults::setFinalStates(states);
        if (user) VLDefaults::setVelmoraUserId(user);
    });
}

void AdRequest::onFailure(const VLClientError& error) const {
    const auto domain = error.error ? std::optional(error.error->domain) : std::nullopt;
    callbacks_->failed(
        formatLogLine("Error fetching data from server, code:%li ,error:%@", {error.responseCode(), domain}));
}

void AdRequest::offerStreamed(const Suggestion& suggestion) const {
    VLLog("Streamed no need to download");
    const auto ad = makeAd(suggestion, std::nullopt);
    VLDefaults::cacheNewAd(ad);
    callbacks_->adIsAvailable(ad);
    armExpiry(ad, suggestion);
}

void AdRequest::offerDownloaded(const Suggestion& suggestion) {
    VLLog("downloading video file");
    const auto url = suggestion->creative->getCtaUrl();
    const auto self = shared_from_this();
    VLInternetCacher::sharedCacher().getFileAsyncFromUrl(
        url, lastPieceOf(url),
        [self, suggestion](const std::string&, const std::string& localPath) {
            self->offerAfterDownload(suggestion, localPath);
        },
        [self, suggestion](const std::optional<std::string>&, const std::string&) {
            VLLog("Download Failed");
            self->options_->setCacheType(VLCacheType::streamed);
            self->offerAfterDownload(suggestion, std::nullopt);
        });
}

void AdRequest::offerAfterDownload(const Suggestion& suggestion,
                                   const std::optional<std::string>& videoFilePath) const {
    if (callbacks_->isDropped()) return;
    const auto ad = makeAd(suggestion, videoFilePath);
    // The other order than that of a streamed ad: applications rely on both.
    callbacks_->adIsAvailable(ad);
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

void AdRequest::armExpiry(const std::shared_ptr<VelmoraAd>& ad, const Suggestion& suggestion) const {
    const auto limit = suggestion->getTimeLimit();
    if (!limit) return;
    // Hours may pass: of the request no more is kept than this one callback.
    platform::MainQueue::after(*limit, [callbacks = callbacks_, ad] { callbacks->adExpires(ad); });
}

}  // namespace velmora
