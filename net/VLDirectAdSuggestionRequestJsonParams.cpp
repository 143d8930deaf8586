#include "net/VLDirectAdSuggestionRequestJsonParams.h"

#include "device/VLUserExtraInfoModel.h"
#include "model/Schema.h"
#include "model/VLFinalStatesModel.h"

namespace velmora {

VLDirectAdSuggestionRequestJsonParams::VLDirectAdSuggestionRequestJsonParams(
    std::int64_t cacheType, const std::optional<std::string>& andZoneId,
    std::shared_ptr<VLFinalStatesModel> andFinalStatesRequest,
    std::shared_ptr<VLUserExtraInfoModel> andUserExtraInfo)
    : clientRequestedCacheType(cacheType),
      zoneId(platform::boxed(andZoneId)),
      finalStatesRequest(std::move(andFinalStatesRequest)),
      userExtraInfo(std::move(andUserExtraInfo)) {}

const Schema& VLDirectAdSuggestionRequestJsonParams::schema() const {
    static constexpr Field fields[]{
        plain<&VLDirectAdSuggestionRequestJsonParams::clientRequestedCacheType>("clientRequestedCacheType"),
        plain<&VLDirectAdSuggestionRequestJsonParams::zoneId>("zoneId"),
        nested<&VLDirectAdSuggestionRequestJsonParams::finalStatesRequest>("finalStatesRequest"),
        nested<&VLDirectAdSuggestionRequestJsonParams::userExtraInfo>("userExtraInfo"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora
