#pragma once

#include "model/VLSerializedModel.h"

#include <cstdint>
#include <optional>
#include <string>

namespace velmora {

class VLFinalStatesModel;
class VLUserExtraInfoModel;

/// The body of a request for an ad.
class VLDirectAdSuggestionRequestJsonParams final : public VLSerializedModel {
public:
    VLDirectAdSuggestionRequestJsonParams() = default;
    VLDirectAdSuggestionRequestJsonParams(std::int64_t cacheType, const std::optional<std::string>& andZoneId,
                                          std::shared_ptr<VLFinalStatesModel> andFinalStatesRequest,
                                          std::shared_ptr<VLUserExtraInfoModel> andUserExtraInfo);

    Property clientRequestedCacheType;
    Property zoneId;
    std::shared_ptr<VLFinalStatesModel> finalStatesRequest;
    std::shared_ptr<VLUserExtraInfoModel> userExtraInfo;

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
