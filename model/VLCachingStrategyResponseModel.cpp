#include "model/VLCachingStrategyResponseModel.h"

#include <utility>

namespace velmora {

VLCachingStrategyResponseModel::VLCachingStrategyResponseModel(bool withSendRequest,
                                                               platform::Property andValidityInMillis)
    : sendRequest(withSendRequest), validityInMillis(std::move(andValidityInMillis)) {}

}  // namespace velmora
