#include "core/ShowBooks.h"

#include "core/VelmoraManager.h"
#include "model/Texts.h"
#include "model/VLAdSuggestion.h"
#include "model/VLDirectCreativeModel.h"
#include "model/VLDoneAdSuggestion.h"
#include "model/VLFinalStatesModel.h"
#include "model/VLProgressTrackerModel.h"
#include "model/VLVastTrackingData.h"
#include "model/VelmoraAdState.h"
#include "net/VLWebServices.h"
#include "platform/UserDefaults.h"
#include "store/VLDefaults.h"

#include <utility>

namespace velmora {

namespace {

constexpr const char* kPassedDuration = "passedDuration";

using Data = VLVastTrackingData;

/// What is sent of an event.
struct Rule {
    const Property& (Data::*trackers)() const;
    AtomicProperty<Property> Data::*isReported = nullptr;  ///< null for what is sent every time
    bool countsWithoutTrackers = false;                    ///< reported even though there is no list
};

Rule ruleOf(TrackingEvent event) {
    switch (event) {
    case TrackingEvent::start: return {&Data::getStartTrackerUrls, &Data::isStartTrackerReported};
    case TrackingEvent::firstQuartile:
        return {&Data::getFirstQuartileTrackerUrls, &Data::isFirstQuartileTrackerReported};
    case TrackingEvent::midpoint: return {&Data::getMidpointTrackerUrls, &Data::isMidpointReported};
    case TrackingEvent::thirdQuartile:
        return {&Data::getThirdQuartileTrackerUrls, &Data::isThirdQuartileTrackerReported};
    case TrackingEvent::complete:
        return {&Data::getCompleteTrackerUrls, &Data::isCompleteTrackerReported, true};
    case TrackingEvent::skip: return {&Data::getSkipTrackerUrls, &Data::isSkipTrackerReported, true};
    case TrackingEvent::mute: return {&Data::getMuteTrackerUrls};
    case TrackingEvent::unmute: return {&Data::getUnmuteTrackerUrls};
    }
    return {};
}

/// Nobody waits for the answer, and nothing is tried twice.
void send(const std::string& url) {
    VLWebServices::callUrl(
        url, [](const auto&) {}, [](const VLClientError&) {});
}

std::shared_ptr<VLVastTrackingData> trackersOf(const std::shared_ptr<VLAdSuggestion>& suggestion) {
    return suggestion && suggestion->creative ? suggestion->creative->vastTrackingData : nullptr;
}

}  // namespace

ShowBooks::ShowBooks(std::shared_ptr<VelmoraAd> ad)
    : ad_(std::move(ad)),
      suggestion_(ad_->state().mAd.get()),
      trackers_(trackersOf(suggestion_)),
      progressTrackers_(trackers_ ? trackers_->progressTrackingUrls.get() : nullptr) {}

void ShowBooks::tracked(TrackingEvent event) {
    const auto rule = ruleOf(event);
    if (!trackers_ || rule.trackers == nullptr) return;
    const auto& urls = ((*trackers_).*rule.trackers)();
    auto* const isReported = rule.isReported != nullptr ? &((*trackers_).*rule.isReported) : nullptr;
    if (isReported != nullptr && (isSet(*isReported) || (!urls && !rule.countsWithoutTrackers))) return;
    for (const auto& url : textsOf(urls).value_or(std::vector<std::string>())) send(url);
    if (isReported != nullptr) isReported->set(Property(true));
}

void ShowBooks::trackedProgress(std::size_t place) {
    if (!progressTrackers_ || place >= progressTrackers_->size()) return;
    const auto entry = (*progressTrackers_)[place];
    const auto toCome = trackers_->progressTrackingUrls.get();
    if (!entry || !toCome) return;
    // The handle may be on its way to the store: its list is replaced, never changed.
    auto left = *toCome;
    if (std::erase(left, entry) == 0) return;
    trackers_->progressTrackingUrls.set(makeList(std::move(left)));
    if (const auto url = entry->getUrl()) send(*url);
}

void ShowBooks::doing() {
    if (!suggestion_ || !suggestion_->suggestionId) return;
    VLDefaults::changeFinalStates(
        [&](VLFinalStatesModel& states) { states.updateDoingSuggestion(suggestion_->getSuggestionId()); });
}

void ShowBooks::passed(const std::string& duration) {
    if (!suggestion_) return;
    const auto id = suggestion_->getSuggestionId();
    VLDefaults::changeFinalStates([&](VLFinalStatesModel& states) {
        // The store may have been held when the show began.
        states.updateDoingSuggestion(id);
        states.updateSuggestionExtraInfo(id, kPassedDuration, Property(duration));
    });
}

void ShowBooks::finished(bool completed) { VelmoraManager::onAdShowFinished(ad_, completed); }

void ShowBooks::done(const ShowFigures& figures) {
    platform::UserDefaults::standard().inOneTransaction([&] {
        if (figures.passedDuration) passed(*figures.passedDuration);
        addDoneSuggestion(figures);
        if (suggestion_) suggestion_->reportAdIsDoneWithFinalStates(VLDefaults::getFinalStates());
        VLDefaults::removeCachedAd(ad_);
    });
}

void ShowBooks::addDoneSuggestion(const ShowFigures& figures) const {
    if (!suggestion_ || !suggestion_->suggestionId || !suggestion_->callToActionId) return;
    const auto done = std::make_shared<VLDoneAdSuggestion>();
    done->suggestionId = suggestion_->suggestionId;
    done->callToActionId = suggestion_->callToActionId;
    done->setFigures(figures);
    VLDefaults::addDoneAdSuggestion(done);
}

}  // namespace velmora
