#include "model/VLDirectCreativeModel.h"

#include "model/Schema.h"
#include "model/VLActionModel.h"
#include "model/VLSkipStarPercentageModel.h"
#include "model/VLVastTrackingData.h"
#include "model/VLVibrationPattern.h"

namespace velmora {

VLDirectCreativeModel::VLDirectCreativeModel(
    std::int64_t type, const std::optional<std::string>& andCtaUrl,
    std::shared_ptr<VLActionModel> andActionModel,
    std::shared_ptr<VLSkipStarPercentageModel> andSkipStartPercentage,
    ModelList<VLVibrationPattern> andVibrationPatterns,
    std::shared_ptr<VLVastTrackingData> andVastTrackingData)
    : ctaType(type),
      ctaUrl(platform::boxed(andCtaUrl)),
      action(std::move(andActionModel)),
      skipStartPercentage(std::move(andSkipStartPercentage)),
      vibrationPatterns(std::move(andVibrationPatterns)),
      vastTrackingData(std::move(andVastTrackingData)) {}

VLCreativeType VLDirectCreativeModel::getCreativeTypeEnum() const {
    for (const auto type : {VLCreativeType::rewardedVideo, VLCreativeType::video, VLCreativeType::banner}) {
        if (platform::equals(ctaType, static_cast<std::int64_t>(type))) return type;
    }
    return VLCreativeType::unknown;
}

bool VLDirectCreativeModel::isSupported() const {
    switch (getCreativeTypeEnum()) {
    case VLCreativeType::rewardedVideo:
    case VLCreativeType::video: return action && ctaUrl && action->isPage();
    case VLCreativeType::banner: return ctaUrl.has_value();
    case VLCreativeType::unknown: break;
    }
    return false;
}

const Schema& VLDirectCreativeModel::schema() const {
    static constexpr Field fields[]{
        plain<&VLDirectCreativeModel::ctaType>("ctaType"),
        plain<&VLDirectCreativeModel::ctaUrl>("ctaUrl"),
        nested<&VLDirectCreativeModel::action>("action"),
        nested<&VLDirectCreativeModel::skipStartPercentage>("skipStartPercentage"),
        listThatReadsEmpty<&VLDirectCreativeModel::vibrationPatterns>("vibrationPatterns"),
        nested<&VLDirectCreativeModel::vastTrackingData>("vastTrackingData"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora
