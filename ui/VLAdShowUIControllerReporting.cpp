// The half of the class that tells: trackers, and figures of what was seen.

#include "log/VLLog.h"
#include "model/ShowEvents.h"
#include "model/VLAdSuggestion.h"
#include "model/VLDirectCreativeModel.h"
#include "model/VLFinalStatesModel.h"
#include "model/VLProgressTrackerModel.h"
#include "model/VLSkipStarPercentageModel.h"
#include "model/VLVastTrackingData.h"
#include "platform/Clock.h"
#include "platform/Log.h"
#include "ui/ProgressOffset.h"
#include "ui/VLAVPlayerViewController.h"
#include "ui/VLAdShowUIController.h"

#include <algorithm>
#include <utility>

namespace velmora {

namespace {

constexpr std::int64_t kSecondsOfPage = 30;
constexpr std::int64_t kMostSecondsOfPage = 100;

using Data = VLVastTrackingData;
using Show = VLAdShowUIController;

/// What is told when something happens, and what that depends on.
struct Tracker {
    const Property& (Data::*urls)() const;
    void (Show::*send)(const Property& urls);
    AtomicProperty<Property> Data::*isReported = nullptr;  ///< null for what is told every time
    bool countsWithoutUrls = false;                        ///< told even though there is no list
};

/// What ticks tell, in this order, and from which fraction of the video on.
constexpr struct {
    std::optional<float> from;  ///< absent for the first tick, wherever it is
    Tracker tracker;
} kOfTicks[] = {
    {std::nullopt, {&Data::getStartTrackerUrls, &Show::sendStartVastReports, &Data::isStartTrackerReported}},
    {0.25F,
     {&Data::getFirstQuartileTrackerUrls, &Show::sendFirstQuartileVastReports,
      &Data::isFirstQuartileTrackerReported}},
    {0.5F, {&Data::getMidpointTrackerUrls, &Show::sendMidPointVastReports, &Data::isMidpointReported}},
    {0.75F,
     {&Data::getThirdQuartileTrackerUrls, &Show::sendThirdQuartileVastReports,
      &Data::isThirdQuartileTrackerReported}},
};

constexpr Tracker kComplete{&Data::getCompleteTrackerUrls, &Show::sendCompleteVastReports,
                            &Data::isCompleteTrackerReported, true};
constexpr Tracker kSkip{&Data::getSkipTrackerUrls, &Show::sendSkipVastReports, &Data::isSkipTrackerReported,
                        true};
constexpr Tracker kMute{&Data::getMuteTrackerUrls, &Show::sendMutedVastReports};
constexpr Tracker kUnmute{&Data::getUnmuteTrackerUrls, &Show::sendUnmutedVastReports};

void report(Show& show, const std::shared_ptr<Data>& data, const Tracker& tracker) {
    if (!data) return;
    const auto& urls = ((*data).*tracker.urls)();
    if (tracker.isReported == nullptr) return (show.*tracker.send)(urls);
    auto& isReported = (*data).*tracker.isReported;
    if (isSet(isReported) || (!urls && !tracker.countsWithoutUrls)) return;
    (show.*tracker.send)(urls);
    // Whoever keeps the books has set it in the handle's own; this one may be a copy.
    isReported.set(Property(true));
}

}  // namespace

void VLAdShowUIController::sendStartVastReports(const Property&) { events_->tracked(TrackingEvent::start); }

void VLAdShowUIController::sendFirstQuartileVastReports(const Property&) {
    events_->tracked(TrackingEvent::firstQuartile);
}

void VLAdShowUIController::sendMidPointVastReports(const Property&) {
    events_->tracked(TrackingEvent::midpoint);
}

void VLAdShowUIController::sendThirdQuartileVastReports(const Property&) {
    events_->tracked(TrackingEvent::thirdQuartile);
}

void VLAdShowUIController::sendCompleteVastReports(const Property&) {
    events_->tracked(TrackingEvent::complete);
}

void VLAdShowUIController::sendSkipVastReports(const Property&) { events_->tracked(TrackingEvent::skip); }

void VLAdShowUIController::sendMutedVastReports(const Property&) { events_->tracked(TrackingEvent::mute); }

void VLAdShowUIController::sendUnmutedVastReports(const Property&) {
    events_->tracked(TrackingEvent::unmute);
}

void VLAdShowUIController::sendProgressVastReports(const Property& url) {
    if (!progressTrackers_) return;
    for (std::size_t place = 0; place < progressTrackers_->size(); ++place) {
        const auto& entry = (*progressTrackers_)[place];
        if (entry && &entry->second == &url) return events_->trackedProgress(place);
    }
}

void VLAdShowUIController::updateSuggestionState() {
    if (ad && ad->suggestionId) events_->doing();
}

std::shared_ptr<VLFinalStatesModel> VLAdShowUIController::getFinalStates() {
    if (!finalStates) finalStates = std::make_shared<VLFinalStatesModel>();
    return finalStates;
}

void VLAdShowUIController::saveFinalStates() {
    if (ad && passedDuration_) events_->passed(*passedDuration_);
}

void VLAdShowUIController::setPassedDuration(const std::string& text) {
    passedDuration_ = text;
    saveFinalStates();
}

void VLAdShowUIController::vlOnProgressUpdated(float progress, float currentTime) {
    if (const auto data = trackingData()) {
        for (const auto& [from, tracker] : kOfTicks) {
            if (!from || progress >= *from) report(*this, data, tracker);
        }
        sendDueOffsets(*data, progress, currentTime);
    }
    if (isVideoShownOnce || !ad) return;
    doneSeconds = length();
    donePercentage = platform::saturated(progress);
    isStateUpdated = true;
    setPassedDuration(std::to_string(*donePercentage));

    const auto skip = creative() ? creative()->skipStartPercentage : nullptr;
    const auto from = skip ? skip->getStart() : std::nullopt;
    if (!from || creative()->getCreativeTypeEnum() != VLCreativeType::banner) return;
    // The answer of the player's is the opposite of its name.
    if (videoView && !videoView->isSkipButtonVisible() && progress > static_cast<float>(*from))
        videoView->setSkipButtonVisible(false);
}

void VLAdShowUIController::sendDueOffsets(VLVastTrackingData& data, float progress, float currentTime) {
    const auto entries = data.progressTrackingUrls.get();
    if (!entries) return;
    std::vector<std::shared_ptr<VLProgressTrackerModel>> toCome;
    for (const auto& entry : *entries) {
        if (!entry || !entry->first) continue;
        const auto offset = entry->getOffset();
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
    report(*this, trackingData(), kSkip);
}

void VLAdShowUIController::vlOnVideoMuted() { report(*this, trackingData(), kMute); }

void VLAdShowUIController::vlOnVideoUnmuted() { report(*this, trackingData(), kUnmute); }

void VLAdShowUIController::onAdWasDone() {
    // Whoever asks, and whenever: what the dismissal of the player leads to may come before that of the show.
    if (couldNotLoad_) return;
    adDoneRecorded = true;
    ShowFigures figures;
    if (creative() && creative()->hasType()) {
        const bool isVideo = ad->isVideoAd();
        if (isVideo ? sawVideo() : sawPage()) figures.passedDuration = passedDuration_;
        if (isVideo) report(*this, trackingData(), kComplete);
    }
    figures.doneSeconds = doneSeconds;
    figures.donePercentage = donePercentage;
    events_->done(figures);
}

std::optional<Seconds> VLAdShowUIController::length() const {
    const auto seconds = videoView ? videoView->getVideoDuration() : std::nullopt;
    return seconds ? std::optional<Seconds>(*seconds) : std::nullopt;
}

bool VLAdShowUIController::sawVideo() {
    if (!isCompletedOrShownOnce()) return false;
    doneSeconds = length();
    donePercentage = 100;
    passedDuration_ = "100";
    return true;
}

bool VLAdShowUIController::sawPage() {
    // The time of day stands for the time that the page was seen, and is always beyond the limit.
    doneSeconds =
        webViewStartTime ? std::min(platform::nowInMilliseconds(), kMostSecondsOfPage) : kSecondsOfPage;
    donePercentage = 100;
    passedDuration_ = std::to_string(*donePercentage);
    return true;
}

}  // namespace velmora
