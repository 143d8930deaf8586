#pragma once

#include "model/AtomicProperty.h"
#include "model/VLAdSuggestionFinalState.h"
#include "model/VLSerializedModel.h"

#include <string>
#include <string_view>
#include <vector>

namespace velmora {

/// The final states of the suggestions of the last answer.
///
/// The four operations that walk the list exclude each other, over all lists of the process; converting a
/// list does not take part in that.
class VLFinalStatesModel final : public VLSerializedModel {
public:
    VLFinalStatesModel() = default;

    [[nodiscard]] ModelList<VLAdSuggestionFinalState> getStates() const { return states_.get(); }

    void setStates(ModelList<VLAdSuggestionFinalState> states) { states_.set(std::move(states)); }

    /// Every state of one of these suggestions becomes filtered.
    void updateFilteredSuggestionIds(const std::optional<std::vector<std::string>>& suggestionIds);

    /// Every state of the suggestion becomes doing.
    void updateDoingSuggestion(const std::optional<std::string>& suggestionId);

    /// Sets one entry of the extra information of every state of the suggestion; an absent value removes it.
    void updateSuggestionExtraInfo(const std::optional<std::string>& suggestionId, std::string_view key,
                                   const Property& value);

    /// The ids of the states that have one, in the order of the list.
    [[nodiscard]] std::vector<std::string> getSuggestionIds() const;

private:
    [[nodiscard]] const Schema& schema() const override;

    AtomicProperty<ModelList<VLAdSuggestionFinalState>> states_;
};

}  // namespace velmora
