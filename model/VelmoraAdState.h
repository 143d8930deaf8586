#pragma once

#include "model/AtomicProperty.h"
#include "model/VLSerializedModel.h"
#include <velmora/VelmoraAd.h>

#include <memory>
#include <optional>
#include <string>

namespace velmora {

class VLAdRequestOptions;
class VLAdSuggestion;

/// What an ad handle holds, and its stored form. All plain keys are written, as the null marker where absent.
class VelmoraAdState final : public VLSerializedModel {
public:
    /// Keeps the value when it is a suggestion; anything else, null included, is ignored.
    void setAd(const std::shared_ptr<VLSerializedModel>& ad);

    void setCacheTime(std::int64_t milliseconds) { cacheTime.set(Value(milliseconds)); }

    void setZoneId(const std::optional<std::string>& zone) { zoneId.set(platform::boxed(zone)); }

    void setVideoFilePath(const std::optional<std::string>& path) {
        videoFilePath.set(platform::boxed(path));
    }

    void setAdRequestOptions(std::shared_ptr<VLAdRequestOptions> options) {
        requestOptions.set(std::move(options));
    }

    AtomicProperty<std::shared_ptr<VLAdSuggestion>> mAd;
    AtomicProperty<Property> cacheTime;
    AtomicProperty<Property> zoneId;
    AtomicProperty<Property> isShown{Property(false)};
    AtomicProperty<Property> videoFilePath;
    AtomicProperty<std::shared_ptr<VLAdRequestOptions>> requestOptions;

private:
    [[nodiscard]] const Schema& schema() const override;
};

/// A handle converts as records do, by the state it holds.
[[nodiscard]] inline const VLSerializedModel& asRecord(const VelmoraAd& ad) { return ad.state(); }

template <>
std::shared_ptr<VelmoraAd> recordFrom<VelmoraAd>(Dictionary* dictionary);

}  // namespace velmora
