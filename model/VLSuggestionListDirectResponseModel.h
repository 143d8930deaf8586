#pragma once

#include "model/AtomicProperty.h"
#include "model/VLSerializedModel.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace velmora {

class VLAdSuggestion;
class VLFinalStatesModel;
enum class VLFinalState : std::int64_t;

/// The service's answer to a request for an ad: the candidates in its order, and settings for all of them.
class VLSuggestionListDirectResponseModel final : public VLSerializedModel {
public:
    /// A final state for each suggestion, in the list's order.
    [[nodiscard]] std::shared_ptr<VLFinalStatesModel>
    extractFinalStateWithInitialState(VLFinalState state) const;

    /// The ids of the suggestions that are not meant for this user: none, in this version.
    [[nodiscard]] std::vector<std::string> getUnnecessarySuggestionIds() const;

    /// Puts the list into an order of chance, each as likely (the shuffle of Fisher and Yates).
    void shuffleSuggestions();

    /// Drops what is not meant for this user or cannot be shown; the rest keeps its order.
    void removeUnnecessaryAds();

    [[nodiscard]] bool isToBeShuffled() const { return platform::asBool(selectDirectAdRandomly); }
    /// Absent for what is no text.
    [[nodiscard]] std::optional<std::string> getUserId() const { return platform::asString(velmoraUserId); }

    AtomicProperty<ModelList<VLAdSuggestion>> suggestions;
    Property selectDirectAdRandomly;  ///< whether the order is to be shuffled
    Property serverSuggestedCacheType;
    Property velmoraUserId;  ///< the user id that the service assigns
    Property ctaDisabled;
    Property ctaDisabledMessage;

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
