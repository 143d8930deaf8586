#pragma once

#include "model/AtomicProperty.h"
#include "model/VLSerializedModel.h"

namespace velmora {

class VelmoraAd;

/// The handles of the ads that are ready to be shown, as they are stored, oldest first. A new list is empty.
class VLCachedVelmoraAds final : public VLSerializedModel {
public:
    AtomicProperty<ModelList<VelmoraAd>> cachedVelmoraAds{makeList<VelmoraAd>()};

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
