#include "model/VLVastTrackingData.h"

#include "model/Schema.h"
#include "model/VLProgressTrackerModel.h"

namespace velmora {

VLVastTrackingData::VLVastTrackingData(Property startTrackerUrls, Property andfirstQuartileTrackerUrls,
                                       Property andMidpointTrackerUrls, Property andThirdQuartileTrackerUrls,
                                       Property andCompleteTrackerUrls, Property andMuteTrackerUrls,
                                       Property andUnmuteTrackerUrls, Property andFullscreenTrackerUrls,
                                       Property andExitFullscreenTrackerUrls, Property andSkipTrackerUrls,
                                       Property andReplayTrackerUrls,
                                       ModelList<VLProgressTrackerModel> andProgressTrackingUrls)
    : progressTrackingUrls(std::move(andProgressTrackingUrls)),
      startTrackerUrls_(std::move(startTrackerUrls)),
      firstQuartileTrackerUrls_(std::move(andfirstQuartileTrackerUrls)),
      midpointTrackerUrls_(std::move(andMidpointTrackerUrls)),
      thirdQuartileTrackerUrls_(std::move(andThirdQuartileTrackerUrls)),
      completeTrackerUrls_(std::move(andCompleteTrackerUrls)),
      muteTrackerUrls_(std::move(andMuteTrackerUrls)),
      unmuteTrackerUrls_(std::move(andUnmuteTrackerUrls)),
      fullscreenTrackerUrls_(std::move(andFullscreenTrackerUrls)),
      exitFullscreenTrackerUrls_(std::move(andExitFullscreenTrackerUrls)),
      skipTrackerUrls_(std::move(andSkipTrackerUrls)),
      replayTrackerUrls_(std::move(andReplayTrackerUrls)) {}

const Schema& VLVastTrackingData::schema() const {
    static constexpr Field fields[]{
        plain<&VLVastTrackingData::startTrackerUrls_>("startTrackerUrls"),
        plain<&VLVastTrackingData::firstQuartileTrackerUrls_>("firstQuartileTrackerUrls"),
        plain<&VLVastTrackingData::midpointTrackerUrls_>("midpointTrackerUrls"),
        plain<&VLVastTrackingData::thirdQuartileTrackerUrls_>("thirdQuartileTrackerUrls"),
        plain<&VLVastTrackingData::completeTrackerUrls_>("completeTrackerUrls"),
        plain<&VLVastTrackingData::muteTrackerUrls_>("muteTrackerUrls"),
        plain<&VLVastTrackingData::unmuteTrackerUrls_>("unmuteTrackerUrls"),
        plain<&VLVastTrackingData::fullscreenTrackerUrls_>("fullscreenTrackerUrls"),
        plain<&VLVastTrackingData::exitFullscreenTrackerUrls_>("exitFullscreenTrackerUrls"),
        plain<&VLVastTrackingData::skipTrackerUrls_>("skipTrackerUrls"),
        plain<&VLVastTrackingData::replayTrackerUrls_>("replayTrackerUrls"),
        listThatReadsEmpty<&VLVastTrackingData::progressTrackingUrls>("progressTrackingUrls"),
        plain<&VLVastTrackingData::isStartTrackerReported>("isStartTrackerReported"),
        plain<&VLVastTrackingData::isFirstQuartileTrackerReported>("isFirstQuartileTrackerReported"),
        plain<&VLVastTrackingData::isMidpointReported>("isMidpointReported"),
        plain<&VLVastTrackingData::isThirdQuartileTrackerReported>("isThirdQuartileTrackerReported"),
        plain<&VLVastTrackingData::isCompleteTrackerReported>("isCompleteTrackerReported"),
        plain<&VLVastTrackingData::isFullscreenTrackerReported>("isFullscreenTrackerReported"),
        plain<&VLVastTrackingData::isExitFullscreenTrackerReported>("isExitFullscreenTrackerReported"),
        plain<&VLVastTrackingData::isSkipTrackerReported>("isSkipTrackerReported"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora
