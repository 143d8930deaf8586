#pragma once

#include "model/AtomicProperty.h"
#include "model/VLSerializedModel.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace velmora {

class VLAdSuggestionFinalState;
class VLDirectCreativeModel;
class VLFinalStatesModel;

enum class VLFinalState : std::int64_t;

/// What the service is told of a suggestion as it happens. Not the numbers of a `VLFinalState`.
enum class VLReportedState : std::int64_t {
    doing = 2,
    filled = 5,
};

/// One ad that the service offers.
class VLAdSuggestion final : public VLSerializedModel {
public:
    [[nodiscard]] std::optional<std::string> getSuggestionId() const;

    /// A video with a reward or without one. False, like the two below, without a creative or its type.
    [[nodiscard]] bool isVideoAd() const;
    [[nodiscard]] bool isRewardedAd() const;
    [[nodiscard]] bool isBannerAd() const;

    /// Whether it is meant for this user: always, in this version.
    [[nodiscard]] bool isValidForThisUser() const { return true; }

    /// Each tells the service once what became of the suggestion, by the persistent queue, which drops it in
    /// this version; the flag is set all the same. Without an identifier there is nothing to tell.
    void reportAdIsFilled();
    void setAdIsFilled() const;
    void reportAdIsDoing();
    void setAdIsDoing() const;
    void reportAdIsDoneWithFinalStates(const std::shared_ptr<VLFinalStatesModel>& finalStates);
    void setAdIsDoneWithFinalStates(const std::shared_ptr<VLFinalStatesModel>& finalStates) const;

    /// A new final state of this suggestion, with empty extra information.
    [[nodiscard]] std::shared_ptr<VLAdSuggestionFinalState>
    extractFinalStateWithInitialState(VLFinalState state) const;

    /// How long it is good for; absent without a limit.
    [[nodiscard]] std::optional<std::chrono::milliseconds> getTimeLimit() const;

    Property callToActionId;
    Property suggestionId;
    Property title;
    Property htmlDesciption;  ///< JSON key "description"; a null marker there is kept
    Property expirationTimeInMillis;
    std::shared_ptr<VLDirectCreativeModel> creative;

    /// Whether the suggestion was reported filled, doing and done; kept on disk, never sent by the service.
    /// A show may set them while the handle is being stored.
    AtomicProperty<Property> filledReported{Property(false)};
    AtomicProperty<Property> doingReported{Property(false)};
    AtomicProperty<Property> doneReported{Property(false)};

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
