#pragma once

#include "model/VLSerializedModel.h"

#include <cstdint>
#include <optional>
#include <string>

namespace velmora {

/// What became of one suggestion so far, as the service is told with the next request.
class VLAdSuggestionFinalState final : public VLSerializedModel {
public:
    /// The states that this library sets.
    static constexpr std::int64_t kFiltered = 1;
    static constexpr std::int64_t kInitial = 2;
    static constexpr std::int64_t kDoing = 3;

    VLAdSuggestionFinalState() = default;
    VLAdSuggestionFinalState(Property suggestionId, std::int64_t andState, Property andExtraInfo);

    void changeStateTo(std::int64_t state);

    [[nodiscard]] const Property& getSuggestionId() const { return suggestionId_; }

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
