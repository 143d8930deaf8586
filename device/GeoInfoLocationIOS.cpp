#include "device/GeoInfoLocationIOS.h"

#include "model/Schema.h"
#include "platform/Geocoder.h"
#include "platform/Immortal.h"
#include "platform/InvalidArgument.h"

#include <boost/algorithm/string/join.hpp>

namespace velmora {

namespace {

using platform::Placemark;

/// The process has one at a time.
AtomicProperty<std::shared_ptr<platform::LocationManager>>& sharedManager() {
    static platform::Immortal<AtomicProperty<std::shared_ptr<platform::LocationManager>>> manager;
    return *manager;
}

/// A copy is made without a look at whether there is anything to copy: the rest of an incomplete place is
/// never taken.
Property copyOf(const char* what, const std::optional<std::string>& text) {
    if (!text) throw platform::InvalidArgument(std::string("the place has no ") + what);
    return Property(*text);
}

std::optional<std::string> joinedLines(const Placemark& placemark) {
    if (!placemark.formattedAddressLines) return std::nullopt;
    return boost::algorithm::join(*placemark.formattedAddressLines, ", ");
}

/// The texts that are copied as they are, in their order.
constexpr struct {
    const char* what;
    AtomicProperty<Property> GeoInfoLocationIOS::*property;
    std::optional<std::string> Placemark::*source;
} kCopied[]{
    {"locality", &GeoInfoLocationIOS::locality, &Placemark::locality},
    {"country", &GeoInfoLocationIOS::country, &Placemark::country},
    {"isoCountryCode", &GeoInfoLocationIOS::isoCountryCode, &Placemark::isoCountryCode},
    {"name", &GeoInfoLocationIOS::name, &Placemark::name},
    {"ocean", &GeoInfoLocationIOS::ocean, &Placemark::ocean},
    {"postalCode", &GeoInfoLocationIOS::postalCode, &Placemark::postalCode},
    {"administrativeArea", &GeoInfoLocationIOS::administrativeArea, &Placemark::administrativeArea},
    {"subAdministrativeArea", &GeoInfoLocationIOS::subAdministrativeArea, &Placemark::subAdministrativeArea},
    {"inlandWater", &GeoInfoLocationIOS::inlandWater, &Placemark::inlandWater},
};

}  // namespace

void GeoInfoLocationIOS::getLocation() {
    const auto manager = std::make_shared<platform::LocationManager>();
    sharedManager().set(manager);
    manager->setDelegate(weak_from_this());
    manager->startUpdatingLocation();
}

void GeoInfoLocationIOS::locationManagerDidUpdateLocations(platform::LocationManager&,
                                                           const std::vector<platform::Location>& locations) {
    if (locations.empty()) return;
    // Not the latest one.
    const auto fix = locations.front();
    if (const auto manager = sharedManager().get()) manager->stopUpdatingLocation();
    platform::Geocoder::reverseGeocodeLocation(
        fix, [self = shared_from_this()](const auto& placemarks, const auto& error) {
            if (!error && !placemarks.empty()) self->take(placemarks.front());
        });
}

void GeoInfoLocationIOS::take(const Placemark& placemark) {
    address.set(copyOf("address", joinedLines(placemark)));
    for (const auto& [what, property, source] : kCopied)
        (this->*property).set(copyOf(what, placemark.*source));
    if (!placemark.location) return;
    latitude.set(Property(placemark.location->latitude));
    longitude.set(Property(placemark.location->longitude));
    altitude.set(Property(placemark.location->altitude));
    horizontalAccuracy.set(Property(placemark.location->horizontalAccuracy));
    verticalAccuracy.set(Property(placemark.location->verticalAccuracy));
}

const Schema& GeoInfoLocationIOS::schema() const {
    static constexpr Field fields[]{
        plain<&GeoInfoLocationIOS::address>("address"),
        plain<&GeoInfoLocationIOS::locality>("locality"),
        plain<&GeoInfoLocationIOS::country>("country"),
        plain<&GeoInfoLocationIOS::isoCountryCode>("isoCountryCode"),
        plain<&GeoInfoLocationIOS::name>("name"),
        plain<&GeoInfoLocationIOS::ocean>("ocean"),
        plain<&GeoInfoLocationIOS::postalCode>("postalCode"),
        plain<&GeoInfoLocationIOS::administrativeArea>("administrativeArea"),
        plain<&GeoInfoLocationIOS::subAdministrativeArea>("subAdministrativeArea"),
        plain<&GeoInfoLocationIOS::inlandWater>("inlandWater"),
        plain<&GeoInfoLocationIOS::latitude>("latitude"),
        plain<&GeoInfoLocationIOS::longitude>("longitude"),
        plain<&GeoInfoLocationIOS::altitude>("altitude"),
        plain<&GeoInfoLocationIOS::horizontalAccuracy>("horizontalAccuracy"),
        plain<&GeoInfoLocationIOS::verticalAccuracy>("verticalAccuracy"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora
