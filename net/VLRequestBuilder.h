#pragma once

#include "model/VLCachedRequestItem.h"
#include "model/VLSerializedModel.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmora {

class VLRewardRequestJsonParams;
enum class VLReportedState : std::int64_t;

/// Builds the requests that the persistent queue was made for.
class VLRequestBuilder {
public:
    [[nodiscard]] static VLRequestBuilder createRequestForUrl(const std::optional<std::string>& url,
                                                              const std::optional<Dictionary>& withInputs,
                                                              VLHttpRequestMethod ofMethod);
    [[nodiscard]] static VLRequestBuilder
    createRequestForUrl(const std::optional<std::string>& url,
                        const std::optional<Dictionary>& withJsonParams, VLHttpRequestMethod ofMethod,
                        VLCallBackType withCallBackType,
                        const std::optional<std::vector<std::string>>& withDoneSuggestionIds,
                        const std::optional<std::vector<std::string>>& withFinalStateSuggestionIds);

    static void queueSuggestion(const std::string& suggestionId, VLReportedState withState);
    static void queueGetReward(const std::shared_ptr<VLRewardRequestJsonParams>& params, bool hasFinalState);
    /// Asks for the rewards whatever the URL is.
    static void queueNormalGetRequestForUrl(const std::optional<std::string>& url);

    /// Does nothing: what was built goes with the builder.
    void queue() const;

    std::shared_ptr<VLCachedRequestItem> request;
};

}  // namespace velmora
