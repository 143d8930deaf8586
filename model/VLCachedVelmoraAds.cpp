#include "model/VLCachedVelmoraAds.h"

#include "model/Schema.h"
#include "model/VelmoraAdState.h"

namespace velmora {

const Schema& VLCachedVelmoraAds::schema() const {
    static constexpr Field fields[]{
        list<&VLCachedVelmoraAds::cachedVelmoraAds>("cachedVelmoraAds"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora
