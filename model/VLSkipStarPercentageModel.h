#pragma once

#include "model/VLSerializedModel.h"

namespace velmora {

/// From when on a video may be skipped.
class VLSkipStarPercentageModel final : public VLSerializedModel {
public:
    /// From which part of the video on; absent when it does not say.
    [[nodiscard]] std::optional<double> getStart() const {
        if (!skipStartPercentage) return std::nullopt;
        return platform::asDouble(skipStartPercentage);
    }

    Property skipStartPercentageType;  ///< JSON key "type"; a missing entry reads as 0
    Property skipStartPercentage;

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
