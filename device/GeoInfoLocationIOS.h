#pragma once

#include "model/VLSerializedModel.h"

namespace velmora {

/// A place: its description, and its coordinates (WGS 84).
class GeoInfoLocationIOS final : public VLSerializedModel {
public:
    Property address;
    Property locality;
    Property country;
    Property isoCountryCode;
    Property name;
    Property ocean;
    Property postalCode;
    Property administrativeArea;
    Property subAdministrativeArea;
    Property inlandWater;
    Property latitude;            ///< degrees
    Property longitude;           ///< degrees
    Property altitude;            ///< metres
    Property horizontalAccuracy;  ///< metres
    Property verticalAccuracy;    ///< metres

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
