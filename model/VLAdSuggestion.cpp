#include "model/VLAdSuggestion.h"

#include "model/Schema.h"
#include "model/VLAdSuggestionFinalState.h"
#include "model/VLDirectCreativeModel.h"

namespace velmora {

namespace {

VLCreativeType typeOf(const VLAdSuggestion& suggestion) {
    return suggestion.creative ? suggestion.creative->getCreativeTypeEnum() : VLCreativeType::unknown;
}

}  // namespace

std::optional<std::string> VLAdSuggestion::getSuggestionId() const {
    return platform::asString(suggestionId);
}

std::optional<std::chrono::milliseconds> VLAdSuggestion::getTimeLimit() const {
    const auto& time = expirationTimeInMillis;
    if (!platform::isValid(time ? &*time : nullptr)) return std::nullopt;
    return std::chrono::milliseconds(platform::asInteger(time));
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
