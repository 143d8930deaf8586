// The half of the class that reports: trackers, figures of what was seen, and the done record.

#include "core/VLLog.h"
#include "model/VLAdSuggestion.h"
#include "model/VLDefaults.h"
#include "model/VLDirectCreativeModel.h"
#include "model/VLDoneAdSuggestion.h"
#include "model/VLFinalStatesModel.h"
#include "model/VLProgressTrackerModel.h"
#include "model/VLSkipStarPercentageModel.h"
#include "model/VLVastTrackingData.h"
#include "net/VLWebServices.h"
#include "platform/Clock.h"
#include "platform/Log.h"
#include "ui/ProgressOffset.h"
#include "ui/VLAVPlayerViewController.h"
#include "ui/VLAdShowUIController.h"

#include <algorithm>
#include <utility>

namespace velmora {

namespace {

constexpr std::int64_t kBanner = 2;
constexpr std::int64_t kSecondsOfPage = 30;
constexpr std::int64_t kMostSecondsOfPage = 100;
constexpr const char* kPassedDuration = "passedDuration";

using Flag = AtomicProperty<Property>;

/// Sends an event's trackers unless they were sent, or there are none.
template <class Send>
void sendOnce(const Property& urls, Flag& reported, const Send& send) {
    if (!urls || platform::asBool(reported.get())) return;
    send(urls);
    reported.set(Property(true));
}

void sendReport(const platform::Value& url) {
    if (const auto text = platform::asString(url))
        VLWebServices::callUrl(
            *text, [](const auto&) {}, [](const VLClientError&) {});
}

void sendReports(const Property& urls) {
    const auto* list = urls ? urls->if_array() : nullptr;
    if (list == nullptr) return;
    for (const auto& url : *list) sendReport(url);
}

}  // namespace

void VLAdShowUIController::sendStartVastReports(const Property& urls) { sendReports(urls); }
void VLAdShowUIController::sendFirstQuartileVastReports(const Property& urls) { sendReports(urls); }
void VLAdShowUIController::sendMidPointVastReports(const Property& urls) { sendReports(urls); }
void VLAdShowUIController::sendThirdQuartileVastReports(const Property& urls) { sendReports(urls); }
void VLAdShowUIController::sendCompleteVastReports(const Property& urls) { sendReports(urls); }
void VLAdShowUIController::sendSkipVastReports(const Property& urls) { sendReports(urls); }
void VLAdShowUIController::sendMutedVastReports(const Property& urls) { sendReports(urls); }
void VLAdShowUIController::sendUnmutedVastReports(const Property& urls) { sendReports(urls); }

void VLAdShowUIController::sendProgressVastReports(const Property& url) {
    if (url) sendReport(*url);
}

void VLAdShowUIController::updateSuggestionState() {
    if (!ad || !ad->suggestionId) return;
    getFinalStates()->updateDoingSuggestion(ad->getSuggestionId());
    saveFinalStates();
}

std::shared_ptr<VLFinalStatesModel> VLAdShowUIController::getFinalStates() {
    if (!finalStates) finalStates = VLDefaults::getFinalStates();
    return finalStates;
}

void VLAdShowUIController::saveFinalStates() const {
    if (finalStates) VLDefaults::setFinalStates(finalStates);
}

void VLAdShowUIController::vlOnProgressUpdated(float progress, float currentTime) {
    if (const auto data = trackingData()) {
        sendDueQuartiles(*data, progress);
        sendDueOffsets(*data, progress, currentTime);
    }
    if (platform::asBool(isVideoShownOnce) || !ad) return;
    doneSeconds = videoView ? videoView->getVideoDuration() : std::nullopt;
    donePercentage = platform::saturated(progress);
    isStateUpdated = true;
    updatePassedDuration();

    const auto skip = creative() ? creative()->skipStartPercentage : nullptr;
    if (!skip || !skip->skipStartPercentage || !platform::equals(creative()->ctaType, kBanner)) return;
    // The answer of the player's is the opposite of its name.
    if (videoView && !videoView->isSkipButtonVisible() &&
        progress > static_cast<float>(platform::asDouble(skip->skipStartPercentage)))
        videoView->setSkipButtonVisible(false);
}

void VLAdShowUIController::sendDueQuartiles(VLVastTrackingData& data, float progress) {
    sendOnce(data.getStartTrackerUrls(), data.isStartTrackerReported, sendStartVastReports);
    if (progress >= 0.25F)
        sendOnce(data.getFirstQuartileTrackerUrls(), data.isFirstQuartileTrackerReported,
                 sendFirstQuartileVastReports);
    if (progress >= 0.5F)
        sendOnce(data.getMidpointTrackerUrls(), data.isMidpointReported, sendMidPointVastReports);
    if (progress >= 0.75F)
        sendOnce(data.getThirdQuartileTrackerUrls(), data.isThirdQuartileTrackerReported,
                 sendThirdQuartileVastReports);
}

void VLAdShowUIController::sendDueOffsets(VLVastTrackingData& data, float progress, float currentTime) {
    const auto entries = data.progressTrackingUrls.get();
    if (!entries) return;
    std::vector<std::shared_ptr<VLProgressTrackerModel>> toCome;
    for (const auto& entry : *entries) {
        if (!entry || !entry->first) continue;
        const auto offset = platform::asString(entry->first);
        if (offset && isProgressOffsetDue(*offset, progress, currentTime)) {
            sendProgressVastReports(entry->second);
        } else {
            toCome.push_back(entry);
        }
    }
    // The handle may be on its way to the store: its list is replaced, never changed.
    if (toCome.size() != entries->size()) data.progressTrackingUrls.set(makeList(std::move(toCome)));
}

void VLAdShowUIController::updatePassedDuration() { setPassedDuration(platform::formatted(donePercentage)); }

void VLAdShowUIController::setPassedDuration(const std::string& text) {
    getFinalStates()->updateSuggestionExtraInfo(ad ? ad->getSuggestionId() : std::nullopt, kPassedDuration,
                                                Property(text));
    saveFinalStates();
}

void VLAdShowUIController::vlOnVideoSkipped() {
    platform::log("vl on video skipped");
    if (videoView && videoView->isVideoPlaying()) {
        platform::log("video was playing, stopping playback");
        videoView->stopPlayback();
    }
    platform::log("removing video view from ui");
    if (videoView) {
        videoView->dismissViewControllerAnimated(true, [controller = self()] {
            platform::log("remove video view completion");
            controller->isActionWebView() ? controller->showActionWebView() : controller->finishWithoutPage();
        });
    }
    if (const auto data = trackingData()) {
        if (platform::asBool(data->isSkipTrackerReported.get())) return;
        sendSkipVastReports(data->getSkipTrackerUrls());
        data->isSkipTrackerReported.set(Property(true));
    }
}

void VLAdShowUIController::vlOnVideoMuted() {
    if (const auto data = trackingData()) sendMutedVastReports(data->getMuteTrackerUrls());
}

void VLAdShowUIController::vlOnVideoUnmuted() {
    if (const auto data = trackingData()) sendUnmutedVastReports(data->getUnmuteTrackerUrls());
}

void VLAdShowUIController::onAdWasDone() {
    adDoneRecorded = true;
    if (creative() && creative()->ctaType) {
        const bool isVideo =
            platform::equals(creative()->ctaType, 1) || platform::equals(creative()->ctaType, 3);
        isVideo ? recordVideo() : recordPage();
    }
    addDoneSuggestion();
    if (ad) ad->reportAdIsDoneWithFinalStates(getFinalStates());
    VLDefaults::removeCachedAd(tAd);
}

void VLAdShowUIController::recordVideo() {
    if (isCompletedOrShownOnce()) {
        doneSeconds = videoView ? videoView->getVideoDuration() : std::nullopt;
        donePercentage = 100;
        setPassedDuration("100");
    }
    const auto data = trackingData();
    if (!data || platform::asBool(data->isCompleteTrackerReported.get())) return;
    sendCompleteVastReports(data->getCompleteTrackerUrls());
    data->isCompleteTrackerReported.set(Property(true));
}

void VLAdShowUIController::recordPage() {
    // The time of day stands for the time that the page was seen, and is always beyond the limit.
    doneSeconds =
        webViewStartTime ? std::min(platform::nowInMilliseconds(), kMostSecondsOfPage) : kSecondsOfPage;
    donePercentage = 100;
    updatePassedDuration();
}

void VLAdShowUIController::addDoneSuggestion() const {
    if (!ad || !ad->suggestionId || !ad->callToActionId) return;
    const auto done = std::make_shared<VLDoneAdSuggestion>();
    done->suggestionId = ad->suggestionId;
    done->callToActionId = ad->callToActionId;
    done->donePercentage = donePercentage;
    done->doneSeconds = doneSeconds;
    VLDefaults::addDoneAdSuggestion(done);
}

}  // namespace velmora
