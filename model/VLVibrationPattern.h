#pragma once

#include "model/VLSerializedModel.h"

namespace velmora {

/// A vibration at a moment of a video. No answer of the service brings one: see the creative's list of them.
class VLVibrationPattern final : public VLSerializedModel {
public:
    VLVibrationPattern() = default;
    VLVibrationPattern(Property startMomentInSeconds, Property andPattern);

    Property vibrationStartMomentInSeconds;  ///< seconds, with a fraction
    Property pattern;                        ///< an array

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
