#include "model/VLDoneAdSuggestion.h"

#include "model/Schema.h"

namespace velmora {

const Schema& VLDoneAdSuggestion::schema() const {
    static constexpr Field fields[]{
        plain<&VLDoneAdSuggestion::suggestionId>("suggestionId"),
        plain<&VLDoneAdSuggestion::callToActionId>("callToActionId"),
        plain<&VLDoneAdSuggestion::donePercentage>("donePercentage"),
        plain<&VLDoneAdSuggestion::doneSeconds>("doneSeconds"),
        plain<&VLDoneAdSuggestion::extraInfo>("extraInfo"),
    };
    static constexpr Schema table(fields);
    return table;
}

void VLDoneAdSuggestion::setFigures(const ShowFigures& figures) {
    donePercentage.reset();
    doneSeconds.reset();
    if (figures.donePercentage) donePercentage = Value(*figures.donePercentage);
    if (figures.doneSeconds)
        doneSeconds = std::visit([](auto seconds) { return Value(seconds); }, *figures.doneSeconds);
}

}  // namespace velmora
