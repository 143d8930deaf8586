#pragma once

#include "model/AtomicProperty.h"
#include "model/ShowEvents.h"
#include "model/VLSerializedModel.h"

#include <memory>

namespace velmora {

class VLAdSuggestion;
class VLProgressTrackerModel;
class VLVastTrackingData;
class VelmoraAd;

/// The books of one show: sends its trackers, keeps its final state and what was seen of it, and tells the
/// application. Flags and lists are those of the handle itself, so that what was sent once is not sent in a
/// later show of it.
class ShowBooks final : public ShowEvents {
public:
    /// Of a handle that is there; without an ad in it, there is little to keep.
    explicit ShowBooks(std::shared_ptr<VelmoraAd> ad);

    void tracked(TrackingEvent event) override;
    void trackedProgress(std::size_t place) override;
    void doing() override;
    void passed(const std::string& duration) override;
    void finished(bool completed) override;
    /// All of it in one transaction of the store, or nothing.
    void done(const ShowFigures& figures) override;

private:
    void addDoneSuggestion(const ShowFigures& figures) const;

    const std::shared_ptr<VelmoraAd> ad_;
    const std::shared_ptr<VLAdSuggestion> suggestion_;
    const std::shared_ptr<VLVastTrackingData> trackers_;
    /// As it was when the show began.
    const ModelList<VLProgressTrackerModel> progressTrackers_;
};

}  // namespace velmora
