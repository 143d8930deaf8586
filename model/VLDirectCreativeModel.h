#pragma once

#include "model/VLSerializedModel.h"

#include <cstdint>
#include <optional>
#include <string>

namespace velmora {

class VLActionModel;
class VLSkipStarPercentageModel;
class VLVastTrackingData;
class VLVibrationPattern;

/// What an ad shows.
enum class VLCreativeType : std::int64_t {
    rewardedVideo = 1,
    banner = 2,  ///< a page
    video = 3,
    unknown = 800,
};

/// What a suggestion shows, and how its call to action works.
class VLDirectCreativeModel final : public VLSerializedModel {
public:
    VLDirectCreativeModel() = default;
    VLDirectCreativeModel(std::int64_t type, const std::optional<std::string>& andCtaUrl,
                          std::shared_ptr<VLActionModel> andActionModel,
                          std::shared_ptr<VLSkipStarPercentageModel> andSkipStartPercentage,
                          ModelList<VLVibrationPattern> andVibrationPatterns,
                          std::shared_ptr<VLVastTrackingData> andVastTrackingData);

    /// The kind; `unknown` for an absent type and for every other number.
    [[nodiscard]] VLCreativeType getCreativeTypeEnum() const;

    [[nodiscard]] VLCreativeType getCtaType() const { return getCreativeTypeEnum(); }

    /// Whether it says what it shows, known or not.
    [[nodiscard]] bool hasType() const { return ctaType.has_value(); }
    /// The video's or the page's; absent for what is no text.
    [[nodiscard]] std::optional<std::string> getCtaUrl() const { return platform::asString(ctaUrl); }

    /// Whether this version can show it: a video needs a URL and an action of type 1, a banner a URL.
    [[nodiscard]] bool isSupported() const;

    Property ctaType;  ///< a `VLCreativeType`
    Property ctaUrl;
    std::shared_ptr<VLActionModel> action;
    std::shared_ptr<VLSkipStarPercentageModel> skipStartPercentage;
    /// Reading leaves the list empty, whatever the entry holds.
    ModelList<VLVibrationPattern> vibrationPatterns;
    std::shared_ptr<VLVastTrackingData> vastTrackingData;

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
