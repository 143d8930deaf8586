#include "model/VLAdSuggestionValidationRule.h"

#include "model/Schema.h"

namespace velmora {

VLAdSuggestionValidationRule::VLAdSuggestionValidationRule(std::int64_t withType,
                                                           const std::optional<std::string>& andCustomAppUrl)
    : type(withType), customAppUrl(platform::boxed(andCustomAppUrl)) {}

const Schema& VLAdSuggestionValidationRule::schema() const {
    static constexpr Field fields[]{
        plain<&VLAdSuggestionValidationRule::type>("type"),
        plain<&VLAdSuggestionValidationRule::customAppUrl>("customAppUrl"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora
