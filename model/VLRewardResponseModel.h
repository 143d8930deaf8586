#pragma once

#include "model/VLSerializedModel.h"

namespace velmora {

/// The answer to a request for a reward.
class VLRewardResponseModel final : public VLSerializedModel {
public:
    Property awardedCoin;  ///< what was granted

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
