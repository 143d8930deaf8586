#include "model/VLAdSuggestionFinalState.h"

#include "model/Schema.h"

namespace velmora {

VLAdSuggestionFinalState::VLAdSuggestionFinalState(Property suggestionId, VLFinalState andState,
                                                   Property andExtraInfo)
    : suggestionId_(std::move(suggestionId)),
      state_(static_cast<std::int64_t>(andState)),
      extraInfo_(std::move(andExtraInfo)) {}

void VLAdSuggestionFinalState::changeStateTo(VLFinalState state) {
    state_ = static_cast<std::int64_t>(state);
}

void VLAdSuggestionFinalState::setExtraInfo(Property extraInfo) { extraInfo_ = std::move(extraInfo); }

const Schema& VLAdSuggestionFinalState::schema() const {
    static constexpr Field fields[]{
        plain<&VLAdSuggestionFinalState::suggestionId_>("suggestionId"),
        plain<&VLAdSuggestionFinalState::state_>("state"),
        plain<&VLAdSuggestionFinalState::extraInfo_>("extraInfo"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora
