#include "device/GeoInfoLocationIOS.h"

#include "model/Schema.h"

namespace velmora {

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
