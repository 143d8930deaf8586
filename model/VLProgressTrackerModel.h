#pragma once

#include "model/VLSerializedModel.h"

namespace velmora {

/// A tracker that is due at an offset of a video.
class VLProgressTrackerModel final : public VLSerializedModel {
public:
    /// Absent for what is no text, both.
    [[nodiscard]] std::optional<std::string> getOffset() const { return platform::asString(first); }
    [[nodiscard]] std::optional<std::string> getUrl() const { return platform::asString(second); }

    Property first;   ///< the offset: "hh:mm:ss", "hh:mm:ss.mmm" or "n%" (VAST 3.0, progress)
    Property second;  ///< the tracker's URL

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
