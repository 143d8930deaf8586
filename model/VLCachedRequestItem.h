#pragma once

#include "model/VLHttpRequestMethod.h"
#include "model/VLSerializedModel.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velmora {

/// What to remove from the store when a request of the queue has succeeded, or was answered with status 500.
enum class VLCallBackType : std::int64_t {
    none = 0,
    rewardWithFinalStates = 1,
    rewardWithoutFinalStates = 2,
};

/// A request that waits in the persistent queue.
class VLCachedRequestItem final : public VLSerializedModel {
public:
    [[nodiscard]] const Property& getUrl() const { return url; }

    [[nodiscard]] const Property& getInputs() const { return inputs; }

    [[nodiscard]] const Property& getJsonParams() const { return jsonParams; }

    [[nodiscard]] const Property& getRequestMode() const { return requestMode; }

    [[nodiscard]] const Property& getIncludeCustomHeaders() const { return includeCustomHeaders; }

    [[nodiscard]] const Property& getCallBackTypeNumber() const { return callBackType; }

    [[nodiscard]] const Property& getCallBackDoneSuggestionIds() const { return callBackDoneSuggestionIds; }

    [[nodiscard]] const Property& getCallBackFinalStateSuggestionIds() const {
        return callBackFinalStateSuggestionIds;
    }

    void setUrl(const std::optional<std::string>& text) { url = platform::boxed(text); }
    /// Empty for what is no text.
    [[nodiscard]] std::string urlText() const;
    /// Absent when there is no list.
    [[nodiscard]] std::optional<std::vector<std::string>> doneSuggestionIds() const;

    /// GET for an absent or unknown number.
    [[nodiscard]] VLHttpRequestMethod getHTTPRequestMode() const;
    void setHttpRequestMode(VLHttpRequestMethod method);

    /// `none` for an absent or unknown number.
    [[nodiscard]] VLCallBackType getCallBackTypeEnum() const;
    void setCallBackTypeEnum(VLCallBackType type);
    void setCallBackTypeNumber(Property number);

    /// No when absent.
    [[nodiscard]] bool shouldIncludeCustomHeaders() const;
    void setShouldIncludeCustomHeaders(bool include);

    Property url;                        ///< absolute
    Property inputs;                     ///< query parameters, a dictionary; absent for a request with a body
    Property jsonParams;                 ///< the body, a dictionary; absent for a GET
    Property requestMode;                ///< the HTTP method: 1 GET, 2 POST, 3 PUT
    Property includeCustomHeaders;       ///< whether the library's own headers are added
    Property callBackType;               ///< a `VLCallBackType`
    Property callBackDoneSuggestionIds;  ///< the suggestions that the removal is about
    Property callBackFinalStateSuggestionIds;  ///< those whose final states it carries; stored and never read

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
