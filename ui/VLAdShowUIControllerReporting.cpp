// The half of the class that reports: trackers, figures of what was seen, and the done record.

#include "log/VLLog.h"
#include "model/VLAdSuggestion.h"
#include "model/VLDirectCreativeModel.h"
#include "model/VLDoneAdSuggestion.h"
#include "model/VLFinalStatesModel.h"
#include "model/VLProgressTrackerModel.h"
#include "model/VLSkipStarPercentageModel.h"
#include "model/VLVastTrackingData.h"
#include "net/VLWebServices.h"
#include "platform/Clock.h"
#include "platform/Log.h"
#include "store/VLDefaults.h"
#include "ui/ProgressOffset.h"
#include "ui/VLAVPlayerViewController.h"
#include "ui/VLAdShowUIController.h"

#include <algorithm>
#include <utility>

namespace velmora {

namespace {

constexpr std::int64_t kSecondsOfPage = 30;
constexpr std::int64_t kMostSecondsOfPage = 100;
constexpr const char* kPassedDuration = "passedDuration";

using Data = VLVastTrackingData;
using Show = VLAdShowUIController;

/// What is sent when something happens.
struct Event {
    const Property& (Data::*trackers)() const;
    AtomicProperty<Property> Data::*isReported = nullptr;  ///< null for what is sent every time
    bool countsWithoutTrackers = false;                    ///< reported even though there is no list
};

/// What ticks send, in this order, and from which fraction of the video on.
constexpr struct {
    std::optional<float> from;  ///< absent for the first tick, wherever it is
    Event event;
} kOfTicks[] = {
    {std::nullopt, {&Data::getStartTrackerUrls, &Data::isStartTrackerReported}},
    {0.25F, {&Data::getFirstQuartileTrackerUrls, &Data::isFirstQuartileTrackerReported}},
    {0.5F, {&Data::getMidpointTrackerUrls, &Data::isMidpointReported}},
    {0.75F, {&Data::getThirdQuartileTrackerUrls, &Data::isThirdQuartileTrackerReported}},
};

constexpr Event kComplete{&Data::getCompleteTrackerUrls, &Data::isCompleteTrackerReported, true};
constexpr Event kSkip{&Data::getSkipTrackerUrls, &Data::isSkipTrackerReported, true};
constexpr Event kMute{&Data::getMuteTrackerUrls};
constexpr Event kUnmute{&Data::getUnmuteTrackerUrls};

void report(const std::shared_ptr<Data>& data, const Event& event) {
    if (!data) return;
    const auto& trackers = ((*data).*event.trackers)();
    if (event.isReported == nullptr) return Show::sendVastReports(trackers);
    auto& isReported = (*data).*event.isReported;
    if (platform::asBool(isReported.get()) || (!trackers && !event.countsWithoutTrackers)) return;
    Show::sendVastReports(trackers);
    isReported.set(Property(true));
}

void sendReport(const platform::Value& url) {
    if (const auto text = platform::asString(url))
        VLWebServices::callUrl(
            *text, [](const auto&) {}, [](const VLClientError&) {});
}

}  // namespace

void VLAdShowUIController::sendVastReports(const Property& urls) {
    const auto* list = urls ? urls->if_array() : nullptr;
    if (list == nullptr) return;
    for (const auto& url : *list) sendReport(url);
}

void VLAdShowUIController::sendProgressVastReports(const Property& url) {
    if (url) sendReport(*url);
}

void VLAdShowUIController::updateSuggestionState() {
    if (!ad || !ad->suggestionId) return;
    changeFinalStates(
        [id = ad->getSuggestionId()](VLFinalStatesModel& states) { states.updateDoingSuggestion(id); });
}

std::shared_ptr<VLFinalStatesModel> VLAdShowUIController::getFinalStates() {
    if (!finalStates) finalStates = VLDefaults::getFinalStates();
    return finalStates;
}

void VLAdShowUIController::saveFinalStates() {
    if (!ad || !passedDuration_) return;
    changeFinalStates([&](VLFinalStatesModel& states) {
        // The store may have been held when the show began.
        states.updateDoingSuggestion(ad->getSuggestionId());
        states.updateSuggestionExtraInfo(ad->getSuggestionId(), kPassedDuration, Property(*passedDuration_));
    });
}

void VLAdShowUIController::changeFinalStates(const std::function<void(VLFinalStatesModel&)>& change) {
    // In the store itself: an answer may have brought another list since the show began.
    VLDefaults::changeFinalStates([&](VLFinalStatesModel& stored) {
        change(stored);
        finalStates = std::make_shared<VLFinalStatesModel>();
        finalStates->setStates(stored.getStates());
    });
}

void VLAdShowUIController::setPassedDuration(const std::string& text) {
    passedDuration_ = text;
    saveFinalStates();
}

void VLAdShowUIController::vlOnProgressUpdated(float progress, float currentTime) {
    if (const auto data = trackingData()) {
        for (const auto& [from, event] : kOfTicks) {
            if (!from || progress >= *from) report(data, event);
        }
        sendDueOffsets(*data, progress, currentTime);
    }
    if (platform::asBool(isVideoShownOnce) || !ad) return;
    doneSeconds = videoView ? videoView->getVideoDuration() : std::nullopt;
    donePercentage = platform::saturated(progress);
    isStateUpdated = true;
    setPassedDuration(platform::formatted(donePercentage));

    const auto skip = creative() ? creative()->skipStartPercentage : nullptr;
    if (!skip || !skip->skipStartPercentage || !platform::equals(creative()->ctaType, VLCreativeType::banner))
        return;
    // The answer of the player's is the opposite of its name.
    if (videoView && !videoView->isSkipButtonVisible() &&
        progress > static_cast<float>(platform::asDouble(skip->skipStartPercentage)))
        videoView->setSkipButtonVisible(false);
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
            controller->followVideo();
        });
    }
    report(trackingData(), kSkip);
}

void VLAdShowUIController::vlOnVideoMuted() { report(trackingData(), kMute); }

void VLAdShowUIController::vlOnVideoUnmuted() { report(trackingData(), kUnmute); }

void VLAdShowUIController::onAdWasDone() {
    // Whoever asks, and whenever: what the dismissal of the player leads to may come before that of the show.
    if (couldNotLoad_) return;
    adDoneRecorded = true;
    if (const auto type = creative() ? creative()->ctaType : std::nullopt) {
        if (platform::equals(type, VLCreativeType::video) ||
            platform::equals(type, VLCreativeType::rewardedVideo))
            recordVideo();
        else
            recordPage();
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
    report(trackingData(), kComplete);
}

void VLAdShowUIController::recordPage() {
    // The time of day stands for the time that the page was seen, and is always beyond the limit.
    doneSeconds =
        webViewStartTime ? std::min(platform::nowInMilliseconds(), kMostSecondsOfPage) : kSecondsOfPage;
    donePercentage = 100;
    setPassedDuration(platform::formatted(donePercentage));
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
