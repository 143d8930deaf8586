#pragma once

#include "model/ShowEvents.h"
#include "model/VLSerializedModel.h"

namespace velmora {

/// An ad that was shown to its end, and how much of it was seen.
class VLDoneAdSuggestion final : public VLSerializedModel {
public:
    /// The suggestion's; absent for what is no text.
    [[nodiscard]] std::optional<std::string> id() const { return platform::asString(suggestionId); }

    void setFigures(const ShowFigures& figures);

    Property suggestionId;
    Property callToActionId;
    Property donePercentage;  ///< percent
    Property doneSeconds;     ///< seconds
    Property extraInfo;       ///< a dictionary

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
