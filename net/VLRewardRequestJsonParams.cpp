#include "net/VLRewardRequestJsonParams.h"

#include "device/VLUserExtraInfoModel.h"
#include "model/Schema.h"
#include "model/VLDoneAdSuggestion.h"
#include "model/VLFinalStatesModel.h"

namespace velmora {

VLRewardRequestJsonParams::VLRewardRequestJsonParams(
    ModelList<VLDoneAdSuggestion> withDoneSuggestions,
    std::shared_ptr<VLFinalStatesModel> andFinalStatesRequest,
    std::shared_ptr<VLUserExtraInfoModel> andUserExtraInfo)
    : doneSuggestions(std::move(withDoneSuggestions)),
      finalStatesRequest(std::move(andFinalStatesRequest)),
      userExtraInfo(std::move(andUserExtraInfo)) {}

const Schema& VLRewardRequestJsonParams::schema() const {
    static constexpr Field fields[]{
        plainList<&VLRewardRequestJsonParams::doneSuggestions>("doneSuggestions"),
        nested<&VLRewardRequestJsonParams::finalStatesRequest>("finalStatesRequest"),
        nested<&VLRewardRequestJsonParams::userExtraInfo>("userExtraInfo"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora
