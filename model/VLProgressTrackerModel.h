#pragma once

#include "model/VLSerializedModel.h"

namespace velmora {

/// A tracker that is due at an offset of a video.
class VLProgressTrackerModel final : public VLSerializedModel {
public:
    Property first;   ///< the offset: "hh:mm:ss", "hh:mm:ss.mmm" or "n%" (VAST 3.0, progress)
    Property second;  ///< the tracker's URL

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
