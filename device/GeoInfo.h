#pragma once

#include "model/AtomicProperty.h"
#include "model/VLSerializedModel.h"

namespace velmora {

class GeoInfoLocationIOS;

/// Where the device is.
class GeoInfo final : public VLSerializedModel {
public:
    /// Written as an empty dictionary when it is absent.
    AtomicProperty<std::shared_ptr<GeoInfoLocationIOS>> geoInfoLocation;

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
