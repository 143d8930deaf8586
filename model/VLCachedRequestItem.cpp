#include "model/VLCachedRequestItem.h"

#include "model/Schema.h"
#include "net/VLClient.h"

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
    return VLClient::getHttpRequestMethodOfNumber(requestMode);
}

void VLCachedRequestItem::setHttpRequestMode(VLHttpRequestMethod method) {
    requestMode = Value(VLClient::getNumberOfHttpRequestMethod(method));
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
