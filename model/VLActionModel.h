#pragma once

#include "model/VLSerializedModel.h"

namespace velmora {

/// What follows a video ad: the page that opens when the player has gone.
class VLActionModel final : public VLSerializedModel {
public:
    Property
        actionType;  ///< JSON key "type"; 1 is the one that can follow a video; a missing entry reads as 0
    Property actionUrl;

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
