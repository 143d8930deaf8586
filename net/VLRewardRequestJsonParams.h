#pragma once

#include "model/VLSerializedModel.h"

namespace velmora {

class VLDoneAdSuggestion;
class VLFinalStatesModel;
class VLUserExtraInfoModel;

/// The body of a request for a reward.
class VLRewardRequestJsonParams final : public VLSerializedModel {
public:
    VLRewardRequestJsonParams() = default;
    VLRewardRequestJsonParams(ModelList<VLDoneAdSuggestion> doneSuggestions,
                              std::shared_ptr<VLFinalStatesModel> andFinalStatesRequest,
                              std::shared_ptr<VLUserExtraInfoModel> andUserExtraInfo);

    /// Unlike other lists, it has no entry when it is absent.
    ModelList<VLDoneAdSuggestion> doneSuggestions;
    std::shared_ptr<VLFinalStatesModel> finalStatesRequest;
    std::shared_ptr<VLUserExtraInfoModel> userExtraInfo;

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
