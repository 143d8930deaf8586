#pragma once

#include "model/AtomicProperty.h"
#include "model/VLSerializedModel.h"

namespace velmora {

class VLProgressTrackerModel;

/// The trackers of a video creative, an array of URLs an event (VAST 3.0, linear tracking events), and for
/// most events whether theirs were sent.
class VLVastTrackingData final : public VLSerializedModel {
public:
    VLVastTrackingData() = default;
    VLVastTrackingData(Property startTrackerUrls, Property andfirstQuartileTrackerUrls,
                       Property andMidpointTrackerUrls, Property andThirdQuartileTrackerUrls,
                       Property andCompleteTrackerUrls, Property andMuteTrackerUrls,
                       Property andUnmuteTrackerUrls, Property andFullscreenTrackerUrls,
                       Property andExitFullscreenTrackerUrls, Property andSkipTrackerUrls,
                       Property andReplayTrackerUrls,
                       ModelList<VLProgressTrackerModel> andProgressTrackingUrls);

    /// The URLs to call for each event; an array, absent when there are none.
    [[nodiscard]] const Property& getStartTrackerUrls() const { return startTrackerUrls_; }
    [[nodiscard]] const Property& getFirstQuartileTrackerUrls() const { return firstQuartileTrackerUrls_; }
    [[nodiscard]] const Property& getMidpointTrackerUrls() const { return midpointTrackerUrls_; }
    [[nodiscard]] const Property& getThirdQuartileTrackerUrls() const { return thirdQuartileTrackerUrls_; }
    [[nodiscard]] const Property& getCompleteTrackerUrls() const { return completeTrackerUrls_; }
    [[nodiscard]] const Property& getMuteTrackerUrls() const { return muteTrackerUrls_; }
    [[nodiscard]] const Property& getUnmuteTrackerUrls() const { return unmuteTrackerUrls_; }
    [[nodiscard]] const Property& getFullscreenTrackerUrls() const { return fullscreenTrackerUrls_; }
    [[nodiscard]] const Property& getExitFullscreenTrackerUrls() const { return exitFullscreenTrackerUrls_; }
    [[nodiscard]] const Property& getSkipTrackerUrls() const { return skipTrackerUrls_; }
    [[nodiscard]] const Property& getReplayTrackerUrls() const { return replayTrackerUrls_; }

    /// The trackers still to come. Reading leaves the list empty, whatever the entry holds.
    AtomicProperty<ModelList<VLProgressTrackerModel>> progressTrackingUrls;

    AtomicProperty<Property> isStartTrackerReported{Property(false)};
    AtomicProperty<Property> isFirstQuartileTrackerReported{Property(false)};
    AtomicProperty<Property> isMidpointReported{Property(false)};
    AtomicProperty<Property> isThirdQuartileTrackerReported{Property(false)};
    AtomicProperty<Property> isCompleteTrackerReported{Property(false)};
    AtomicProperty<Property> isFullscreenTrackerReported{Property(false)};
    AtomicProperty<Property> isExitFullscreenTrackerReported{Property(false)};
    AtomicProperty<Property> isSkipTrackerReported{Property(false)};

private:
    [[nodiscard]] const Schema& schema() const override;

    Property startTrackerUrls_;           ///< playback started
    Property firstQuartileTrackerUrls_;   ///< a quarter was played
    Property midpointTrackerUrls_;        ///< half was played
    Property thirdQuartileTrackerUrls_;   ///< three quarters were played
    Property completeTrackerUrls_;        ///< playback reached the end
    Property muteTrackerUrls_;            ///< the sound went off
    Property unmuteTrackerUrls_;          ///< the sound came back
    Property fullscreenTrackerUrls_;      ///< full screen was entered
    Property exitFullscreenTrackerUrls_;  ///< full screen was left
    Property skipTrackerUrls_;            ///< the viewer skipped
    Property replayTrackerUrls_;          ///< the viewer replayed
};

}  // namespace velmora
