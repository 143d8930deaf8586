#include <velmora/VLAdRequestOptions.h>

#include "model/VLAdRequestOptionsState.h"

namespace velmora {

VLAdRequestOptions::VLAdRequestOptions() : state_(std::make_unique<VLAdRequestOptionsState>()) {}

VLAdRequestOptions::~VLAdRequestOptions() = default;

void VLAdRequestOptions::setCacheType(std::int64_t cacheType) { state_->mCacheType.set(Value(cacheType)); }

std::optional<std::int64_t> VLAdRequestOptions::getCacheTypeNumber() const {
    const auto cacheType = state_->mCacheType.get();
    if (!cacheType) return std::nullopt;
    return platform::asInteger(*cacheType);
}

std::int64_t VLAdRequestOptions::getCacheType() const {
    const bool isCached = platform::equals(state_->mCacheType.get(), VLCacheType::cached);
    return static_cast<std::int64_t>(isCached ? VLCacheType::cached : VLCacheType::streamed);
}

VLAdRequestOptionsState& VLAdRequestOptions::state() const noexcept { return *state_; }

}  // namespace velmora
