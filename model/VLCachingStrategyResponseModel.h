#pragma once

#include "platform/Value.h"

namespace velmora {

/// Whether and how long a caching strategy holds. No part of the library makes one, and it is not a record.
class VLCachingStrategyResponseModel {
public:
    VLCachingStrategyResponseModel() = default;
    VLCachingStrategyResponseModel(bool sendRequest, platform::Property andValidityInMillis);

    platform::Property sendRequest;
    platform::Property validityInMillis;  ///< milliseconds
};

}  // namespace velmora
