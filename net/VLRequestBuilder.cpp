#include "net/VLRequestBuilder.h"

#include "model/VLDoneAdSuggestion.h"
#include "model/VLFinalStatesModel.h"
#include "net/VLRewardRequestJsonParams.h"
#include "net/VLWebServices.h"

namespace velmora {

namespace {

using Ids = std::vector<std::string>;

Property boxed(const std::optional<Dictionary>& dictionary) {
    return dictionary ? Property(Value(*dictionary)) : std::nullopt;
}

Property boxed(const std::optional<Ids>& ids) {
    if (!ids) return std::nullopt;
    return Value(Array(ids->begin(), ids->end()));
}

Ids idsOf(const ModelList<VLDoneAdSuggestion>& suggestions) {
    Ids ids;
    if (!suggestions) return ids;
    for (const auto& suggestion : *suggestions) {
        if (auto id = suggestion ? suggestion->id() : std::nullopt) {
            ids.push_back(std::move(*id));
        }
    }
    return ids;
}

}  // namespace

VLRequestBuilder VLRequestBuilder::createRequestForUrl(const std::optional<std::string>& url,
                                                       const std::optional<Dictionary>& withInputs,
                                                       VLHttpRequestMethod ofMethod) {
    auto builder =
        createRequestForUrl(url, std::nullopt, ofMethod, VLCallBackType::none, std::nullopt, std::nullopt);
    builder.request->inputs = boxed(withInputs);
    return builder;
}

VLRequestBuilder VLRequestBuilder::createRequestForUrl(
    const std::optional<std::string>& url, const std::optional<Dictionary>& withJsonParams,
    VLHttpRequestMethod ofMethod, VLCallBackType withCallBackType,
    const std::optional<Ids>& withDoneSuggestionIds, const std::optional<Ids>& withFinalStateSuggestionIds) {
    VLRequestBuilder builder;
    builder.request = std::make_shared<VLCachedRequestItem>();
    builder.request->setUrl(url);
    builder.request->jsonParams = boxed(withJsonParams);
    builder.request->setHttpRequestMode(ofMethod);
    builder.request->setShouldIncludeCustomHeaders(true);
    builder.request->setCallBackTypeEnum(withCallBackType);
    builder.request->callBackDoneSuggestionIds = boxed(withDoneSuggestionIds);
    builder.request->callBackFinalStateSuggestionIds = boxed(withFinalStateSuggestionIds);
    return builder;
}

void VLRequestBuilder::queueSuggestion(const std::string& suggestionId, VLReportedState withState) {
    createRequestForUrl(VLWebServices::getSuggestionSelectionUrl(suggestionId),
                        Dictionary{{"newState", static_cast<std::int64_t>(withState)}},
                        VLHttpRequestMethod::post, VLCallBackType::none, std::nullopt, std::nullopt)
        .queue();
}

void VLRequestBuilder::queueGetReward(const std::shared_ptr<VLRewardRequestJsonParams>& params,
                                      bool hasFinalState) {
    if (!params) return;
    std::optional<Ids> finalIds;
    if (hasFinalState)
        finalIds = params->finalStatesRequest ? params->finalStatesRequest->getSuggestionIds() : Ids();
    const auto type =
        hasFinalState ? VLCallBackType::rewardWithFinalStates : VLCallBackType::rewardWithoutFinalStates;
    createRequestForUrl(VLWebServices::getRewardsUrl(), dictionaryOf(*params), VLHttpRequestMethod::post,
                        type, idsOf(params->doneSuggestions), finalIds)
        .queue();
}

void VLRequestBuilder::queueNormalGetRequestForUrl(const std::optional<std::string>&) {
    createRequestForUrl(VLWebServices::getRewardsUrl(), std::nullopt, VLHttpRequestMethod::get,
                        VLCallBackType::none, std::nullopt, std::nullopt)
        .queue();
}

void VLRequestBuilder::queue() const {}

}  // namespace velmora
