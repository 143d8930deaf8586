// The half of a suggestion that tells the service what became of it.

#include "device/VLUserExtraInfoModel.h"
#include "model/VLAdSuggestion.h"
#include "net/VLRequestBuilder.h"
#include "net/VLRewardRequestJsonParams.h"
#include "store/VLDefaults.h"

namespace velmora {

void VLAdSuggestion::reportAdIsFilled() {
    if (isSet(filledReported)) return;
    filledReported.set(Value(true));
    setAdIsFilled();
}

void VLAdSuggestion::setAdIsFilled() const {
    if (const auto id = getSuggestionId()) VLRequestBuilder::queueSuggestion(*id, VLReportedState::filled);
}

void VLAdSuggestion::reportAdIsDoing() {
    if (isSet(doingReported)) return;
    doingReported.set(Value(true));
    setAdIsDoing();
}

void VLAdSuggestion::setAdIsDoing() const {
    if (const auto id = getSuggestionId()) VLRequestBuilder::queueSuggestion(*id, VLReportedState::doing);
}

void VLAdSuggestion::reportAdIsDoneWithFinalStates(const std::shared_ptr<VLFinalStatesModel>& finalStates) {
    if (isSet(doneReported)) return;
    doneReported.set(Value(true));
    setAdIsDoneWithFinalStates(finalStates);
}

void VLAdSuggestion::setAdIsDoneWithFinalStates(
    const std::shared_ptr<VLFinalStatesModel>& finalStates) const {
    if (!getSuggestionId()) return;
    const auto body = std::make_shared<VLRewardRequestJsonParams>(
        VLDefaults::getDoneAdSuggestions(), finalStates, VLUserExtraInfoModel::getInstance());
    VLRequestBuilder::queueGetReward(body, true);
}

}  // namespace velmora
