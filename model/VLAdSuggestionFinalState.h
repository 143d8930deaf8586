#pragma once

#include "model/VLSerializedModel.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velmora {

/// The final states that this library sets.
enum class VLFinalState : std::int64_t {
    filtered = 1,
    initial = 2,
    doing = 3,
};

/// What became of one suggestion so far, as the service is told with the next request.
class VLAdSuggestionFinalState final : public VLSerializedModel {
public:
    VLAdSuggestionFinalState() = default;
    VLAdSuggestionFinalState(Property suggestionId, VLFinalState andState, Property andExtraInfo);

    void changeStateTo(VLFinalState state);

    [[nodiscard]] const Property& getSuggestionId() const { return suggestionId_; }

    /// Whether it is that of one of these suggestions.
    [[nodiscard]] bool isOfOneOf(const std::vector<std::string>& ids) const {
        return platform::isOneOf(suggestionId_, ids);
    }

    [[nodiscard]] const Property& getState() const { return state_; }

    [[nodiscard]] const Property& getExtraInfo() const { return extraInfo_; }

    void setExtraInfo(Property extraInfo);

private:
    [[nodiscard]] const Schema& schema() const override;

    Property suggestionId_;
    Property state_;
    Property extraInfo_;  ///< a dictionary
};

}  // namespace velmora
