#include "device/GeoInfo.h"

#include "device/GeoInfoLocationIOS.h"
#include "model/Schema.h"

namespace velmora {

const Schema& GeoInfo::schema() const {
    static constexpr Field fields[]{
        nestedOrEmpty<&GeoInfo::geoInfoLocation>("geoInfoLocation"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora
