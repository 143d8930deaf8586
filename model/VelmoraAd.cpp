#include <velmora/VelmoraAd.h>

#include "model/VLAdSuggestion.h"
#include "model/VLDirectCreativeModel.h"
#include "model/VelmoraAdState.h"
#include "platform/Clock.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include <velmora/VLAdRequestOptions.h>

namespace velmora {

VelmoraAd::VelmoraAd() : state_(std::make_unique<VelmoraAdState>()) {}

VelmoraAd::~VelmoraAd() = default;

std::optional<std::string> VelmoraAd::getId() const {
    if (const auto ad = state_->mAd.get()) return ad->getSuggestionId();
    const auto zone = getZoneId();
    return "3353fkad" + (zone ? "_" + *zone : std::string());
}

std::optional<std::string> VelmoraAd::getZoneId() const { return platform::asString(state_->zoneId.get()); }

std::optional<std::int64_t> VelmoraAd::getCacheTime() const {
    const auto cacheTime = state_->cacheTime.get();
    if (!cacheTime) return std::nullopt;
    return platform::asInteger(cacheTime);
}

std::optional<std::string> VelmoraAd::getVideoFilePath() const {
    return platform::asString(state_->videoFilePath.get());
}

std::shared_ptr<VLAdRequestOptions> VelmoraAd::getRequestOptions() const {
    return state_->requestOptions.get();
}

bool VelmoraAd::isAdShown() const { return platform::asBool(state_->isShown.get()); }

bool VelmoraAd::isVideoAd() const {
    const auto ad = state_->mAd.get();
    return ad && ad->isVideoAd();
}

bool VelmoraAd::isRewardedAd() const {
    const auto ad = state_->mAd.get();
    return ad && ad->isRewardedAd();
}

bool VelmoraAd::isBannerAd() const {
    const auto ad = state_->mAd.get();
    return ad && ad->isBannerAd();
}

bool VelmoraAd::isExpired() const {
    const auto now = platform::nowInMilliseconds();
    // Written whether or not debug logging is on.
    platform::log("now epoch time  millis " + std::to_string(now));

    const auto ad = state_->mAd.get();
    const auto cacheTime = state_->cacheTime.get();
    // A null marker means no limit, as an absent entry does.
    if (!ad || !cacheTime || !ad->expirationTimeInMillis || ad->expirationTimeInMillis->is_null())
        return false;
    // Two numbers of 64 bits may add up to more than 64 bits.
    std::int64_t end = 0;
    if (__builtin_add_overflow(platform::asInteger(cacheTime),
                               platform::asInteger(ad->expirationTimeInMillis), &end)) {
        return platform::asInteger(cacheTime) < 0;
    }
    return end < now;
}

bool VelmoraAd::isFileRemoved() const {
    const auto path = getVideoFilePath();
    return !path || !platform::FileManager::isRegularFile(*path);
}

bool VelmoraAd::isValid() const {
    if (isVideoAd()) {
        const auto options = getRequestOptions();
        if (!options) return false;
        if (isExpired()) return false;
        return options->getCacheType() == VLCacheType::streamed || !isFileRemoved();
    }
    if (isBannerAd()) return !isExpired();
    return state_->mAd.get() == nullptr;
}

VelmoraAdState& VelmoraAd::state() const noexcept { return *state_; }

}  // namespace velmora
