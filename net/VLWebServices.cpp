#include "net/VLWebServices.h"

#include "model/VLCachedRequestItem.h"
#include "model/VLRewardResponseModel.h"
#include "model/VLSuggestionListDirectResponseModel.h"
#include "net/VLClient.h"
#include "platform/Json.h"
#include "store/VLDefaults.h"

#include <cstdlib>
#include <utility>

namespace velmora {

namespace {

constexpr std::int64_t kServerError = 500;

VLClientSuccess asText(const VLSuccess<std::optional<std::string>>& success) {
    return [success](std::int64_t, const VLResult& result) { success(resultAsText(result)); };
}

VLClientSuccess asList(const VLSuccess<std::shared_ptr<VLSuggestionListDirectResponseModel>>& success) {
    return [success](std::int64_t, const VLResult& result) {
        success(resultAs<VLSuggestionListDirectResponseModel>(result));
    };
}

std::optional<Dictionary> dictionaryIn(const Property& property) {
    const auto* dictionary = property ? property->if_object() : nullptr;
    return dictionary != nullptr ? std::optional(*dictionary) : std::nullopt;
}

std::optional<std::string> jsonOfDictionaryIn(const Property& property) {
    const auto* dictionary = property ? property->if_object() : nullptr;
    return dictionary != nullptr ? platform::writeJson(*dictionary) : std::nullopt;
}

/// What a request of the queue removes from the store once the service has dealt with it. The final states go
/// by the ids of the done suggestions too, not by ids of their own.
std::function<void()> removalFor(const VLCachedRequestItem& item) {
    const auto ids = item.doneSuggestionIds();
    switch (item.getCallBackTypeEnum()) {
    case VLCallBackType::rewardWithFinalStates:
        return [ids] {
            VLDefaults::removeFinalStatesByIds(ids);
            VLDefaults::removeDoneSuggestionsByIds(ids);
        };
    case VLCallBackType::rewardWithoutFinalStates:
        return [ids] { VLDefaults::removeDoneSuggestionsByIds(ids); };
    case VLCallBackType::none: break;
    }
    return {};
}

}  // namespace

std::string VLWebServices::siteRootUrl() {
    const char* given = std::getenv("VELMORA_API_BASE_URL");
    std::string base = given != nullptr && *given != '\0' ? given : VELMORA_DEFAULT_API_BASE_URL;
    while (base.ends_with('/')) base.pop_back();
    return base;
}

std::string VLWebServices::getSuggestionsUrl() { return siteRootUrl() + "/suggestions/"; }

std::string VLWebServices::getSuggestionSelectionUrl(const std::string& suggestionId) {
    return siteRootUrl() + "/suggestions/" + suggestionId + "/status/";
}

std::string VLWebServices::getRewardsUrl() { return siteRootUrl() + "/suggestions/get-reward"; }

std::string VLWebServices::getTrackerReportUrl() { return siteRootUrl() + "/suggestions/tracker/done"; }

std::string VLWebServices::getCrashReportUrl() { return siteRootUrl() + "/common/send-crash"; }

std::string VLWebServices::getTokenUrl() { return siteRootUrl() + "/token/"; }

std::string VLWebServices::getCachingStrategyUrl() { return siteRootUrl() + "/strategies/caching"; }

std::string VLWebServices::getVastUrlForZone(const std::optional<std::string>& zone) {
    return siteRootUrl() + "/pre-roll/" + platform::formatted(zone) + "/vast";
}

void VLWebServices::getAdSuggestionsWithBody(
    const std::shared_ptr<VLSerializedModel>& body,
    const VLSuccess<std::shared_ptr<VLSuggestionListDirectResponseModel>>& success,
    const VLFailure& failure) {
    // An empty callback is checked when the answer is there: an answer with status 200 is no failure without
    // it.
    const auto checked = [success](const std::shared_ptr<VLSuggestionListDirectResponseModel>& list) {
        if (success) success(list);
    };
    callWebServiceOfMethod({.method = VLHttpRequestMethod::post,
                            .url = getSuggestionsUrl(),
                            .includeCustomHeaders = true,
                            .receive = receive<VLSuggestionListDirectResponseModel>(),
                            .success = asList(checked),
                            .failure = failure},
                           body);
}

void VLWebServices::sendCrashReportWithBody(const std::shared_ptr<VLSerializedModel>& body,
                                            const VLSuccess<std::optional<std::string>>& success,
                                            const VLFailure& failure) {
    callWebServiceOfMethod({.url = getCrashReportUrl(), .success = asText(success), .failure = failure},
                           body);
}

void VLWebServices::callUrl(const std::string& url, const VLSuccess<std::optional<std::string>>& success,
                            const VLFailure& failure) {
    callWebServiceOfMethod({.url = url, .isReport = true, .success = asText(success), .failure = failure});
}

void VLWebServices::getCachingStrategyForZoneId(
    const std::optional<std::string>& zoneId, std::int64_t doneCount, std::int64_t doingCount,
    const VLSuccess<std::shared_ptr<VLSuggestionListDirectResponseModel>>& success,
    const VLFailure& failure) {
    Dictionary params{{"doneCount", std::to_string(doneCount)}, {"doingCount", std::to_string(doingCount)}};
    if (zoneId) params["zoneId"] = *zoneId;
    callWebServiceOfMethod({.url = getCachingStrategyUrl(),
                            .params = params,
                            .includeCustomHeaders = true,
                            .receive = receive<VLSuggestionListDirectResponseModel>(),
                            .success = asList(success),
                            .failure = failure});
}

void VLWebServices::callCachedRequest(const std::shared_ptr<VLCachedRequestItem>& item,
                                      const std::function<void(std::int64_t status)>& success,
                                      const VLFailure& failure) {
    if (!item) return;
    const auto remove = removalFor(*item);
    const auto onSuccess = [remove, success](std::int64_t status, const VLResult&) {
        if (remove) remove();
        if (success) success(status);
    };
    const auto onFailure = [remove, failure](const VLClientError& error) {
        if (remove && error.responseCode() == kServerError) remove();
        if (failure) failure(error);
    };
    callWebServiceOfMethod({.method = item->getHTTPRequestMode(),
                            .url = item->urlText(),
                            .params = dictionaryIn(item->getInputs()),
                            .body = jsonOfDictionaryIn(item->getJsonParams()),
                            .includeCustomHeaders = item->shouldIncludeCustomHeaders(),
                            .receive = remove ? receive<VLRewardResponseModel>() : VLReceive(),
                            .success = onSuccess,
                            .failure = onFailure});
}

std::shared_ptr<VLDataTask> VLWebServices::callWebServiceOfMethod(const VLCall& call) {
    return VLClient::sendRequestOfMethod(call, VLRetryMode::withNewToken);
}

std::shared_ptr<VLDataTask>
VLWebServices::callWebServiceOfMethod(VLCall call, const std::shared_ptr<VLSerializedModel>& withBody) {
    return VLClient::sendRequestOfMethod(std::move(call), withBody, VLRetryMode::withNewToken);
}

}  // namespace velmora
