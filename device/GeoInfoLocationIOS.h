#pragma once

#include "model/AtomicProperty.h"
#include "model/VLSerializedModel.h"
#include "platform/Location.h"

#include <memory>
#include <vector>

namespace velmora::platform {

struct Placemark;

}  // namespace velmora::platform

namespace velmora {

/// A place: its description, and its coordinates (WGS 84). The main thread fills it in, while others may read
/// it; its parts are not written as one.
class GeoInfoLocationIOS final : public VLSerializedModel,
                                 public platform::LocationManagerDelegate,
                                 public std::enable_shared_from_this<GeoInfoLocationIOS> {
public:
    /// Asks for one fix, and for the place that it lies in. What was asked before, of any place, is given up
    /// unless its fix has come. Any thread; to be owned by a shared pointer. Nothing comes where there is no
    /// location service, or no geocoder is set.
    ///
    /// A place that lacks one of the ten texts fills in those before it, and nothing after.
    void getLocation();

    /// The oldest location is the fix.
    void locationManagerDidUpdateLocations(platform::LocationManager& manager,
                                           const std::vector<platform::Location>& locations) override;

    AtomicProperty<Property> address;
    AtomicProperty<Property> locality;
    AtomicProperty<Property> country;
    AtomicProperty<Property> isoCountryCode;
    AtomicProperty<Property> name;
    AtomicProperty<Property> ocean;
    AtomicProperty<Property> postalCode;
    AtomicProperty<Property> administrativeArea;
    AtomicProperty<Property> subAdministrativeArea;
    AtomicProperty<Property> inlandWater;
    AtomicProperty<Property> latitude;            ///< degrees
    AtomicProperty<Property> longitude;           ///< degrees
    AtomicProperty<Property> altitude;            ///< metres
    AtomicProperty<Property> horizontalAccuracy;  ///< metres, negative where it is not known
    AtomicProperty<Property> verticalAccuracy;    ///< metres, negative where it is not known

private:
    [[nodiscard]] const Schema& schema() const override;

    /// Throws `platform::InvalidArgument` at the first text that is missing.
    void take(const platform::Placemark& placemark);
};

}  // namespace velmora
