#include "model/VLAdSuggestion.h"

#include "device/VLUserExtraInfoModel.h"
#include "model/Schema.h"
#include "model/VLAdSuggestionFinalState.h"
#include "model/VLDirectCreativeModel.h"
#include "net/VLRequestBuilder.h"
#include "net/VLRewardRequestJsonParams.h"
#include "store/VLDefaults.h"

namespace velmora {

namespace {

VLCreativeType typeOf(const VLAdSuggestion& suggestion) {
    return suggestion.creative ? suggestion.creative->getCreativeTypeEnum() : VLCreativeType::unknown;
}

}  // namespace

std::optional<std::string> VLAdSuggestion::getSuggestionId() const {
    return platform::asString(suggestionId);
}

void VLAdSuggestion::reportAdIsFilled() {
    if (platform::asBool(filledReported.get())) return;
    filledReported.set(Value(true));
    setAdIsFilled();
}

void VLAdSuggestion::setAdIsFilled() const {
    if (const auto id = getSuggestionId()) VLRequestBuilder::queueSuggestion(*id, VLReportedState::filled);
}

void VLAdSuggestion::reportAdIsDoing() {
    if (platform::asBool(doingReported.get())) return;
    doingReported.set(Value(true));
    setAdIsDoing();
}

void VLAdSuggestion::setAdIsDoing() const {
    if (const auto id = getSuggestionId()) VLRequestBuilder::queueSuggestion(*id, VLReportedState::doing);
}

void VLAdSuggestion::reportAdIsDoneWithFinalStates(const std::shared_ptr<VLFinalStatesModel>& finalStates) {
    if (platform::asBool(doneReported.get())) return;
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

std::shared_ptr<VLAdSuggestionFinalState>
VLAdSuggestion::extractFinalStateWithInitialState(VLFinalState state) const {
    return std::make_shared<VLAdSuggestionFinalState>(suggestionId, state, Value(Dictionary()));
}

bool VLAdSuggestion::isVideoAd() const {
    const auto type = typeOf(*this);
    return type == VLCreativeType::rewardedVideo || type == VLCreativeType::video;
}

bool VLAdSuggestion::isRewardedAd() const { return typeOf(*this) == VLCreativeType::rewardedVideo; }

bool VLAdSuggestion::isBannerAd() const { return typeOf(*this) == VLCreativeType::banner; }

const Schema& VLAdSuggestion::schema() const {
    static constexpr Field fields[]{
        plain<&VLAdSuggestion::callToActionId>("callToActionId"),
        plain<&VLAdSuggestion::suggestionId>("suggestionId"),
        plain<&VLAdSuggestion::title>("title"),
        mapped<&VLAdSuggestion::htmlDesciption>("description", "htmlDesciption"),
        plain<&VLAdSuggestion::expirationTimeInMillis>("expirationTimeInMillis"),
        nested<&VLAdSuggestion::creative>("creative"),
        plain<&VLAdSuggestion::filledReported>("filledReported"),
        plain<&VLAdSuggestion::doingReported>("doingReported"),
        plain<&VLAdSuggestion::doneReported>("doneReported"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora
