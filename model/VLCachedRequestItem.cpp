#include "model/VLCachedRequestItem.h"

#include "model/Schema.h"
#include "model/Texts.h"

#include <utility>

namespace velmora {

const Schema& VLCachedRequestItem::schema() const {
    static constexpr Field fields[]{
        plain<&VLCachedRequestItem::url>("url"),
        plain<&VLCachedRequestItem::inputs>("inputs"),
        plain<&VLCachedRequestItem::jsonParams>("jsonParams"),
        plain<&VLCachedRequestItem::requestMode>("requestMode"),
        plain<&VLCachedRequestItem::includeCustomHeaders>("includeCustomHeaders"),
        plain<&VLCachedRequestItem::callBackType>("callBackType"),
        plain<&VLCachedRequestItem::callBackDoneSuggestionIds>("callBackDoneSuggestionIds"),
        plain<&VLCachedRequestItem::callBackFinalStateSuggestionIds>("callBackFinalStateSuggestionIds"),
    };
    static constexpr Schema table(fields);
    return table;
}

VLHttpRequestMethod VLCachedRequestItem::getHTTPRequestMode() const {
    return httpRequestMethodOf(requestMode);
}

void VLCachedRequestItem::setHttpRequestMode(VLHttpRequestMethod method) {
    requestMode = Value(numberOf(method));
}

std::string VLCachedRequestItem::urlText() const { return platform::asString(url).value_or(std::string()); }

std::optional<std::vector<std::string>> VLCachedRequestItem::doneSuggestionIds() const {
    return textsOf(callBackDoneSuggestionIds);
}

VLCallBackType VLCachedRequestItem::getCallBackTypeEnum() const {
    for (const auto type :
         {VLCallBackType::rewardWithFinalStates, VLCallBackType::rewardWithoutFinalStates}) {
        if (platform::equals(callBackType, static_cast<std::int64_t>(type))) return type;
    }
    return VLCallBackType::none;
}

void VLCachedRequestItem::setCallBackTypeEnum(VLCallBackType type) {
    callBackType = Value(static_cast<std::int64_t>(type));
}

void VLCachedRequestItem::setCallBackTypeNumber(Property number) { callBackType = std::move(number); }

bool VLCachedRequestItem::shouldIncludeCustomHeaders() const {
    return platform::asBool(includeCustomHeaders);
}

void VLCachedRequestItem::setShouldIncludeCustomHeaders(bool include) {
    includeCustomHeaders = Value(include);
}

}  // namespace velmora
