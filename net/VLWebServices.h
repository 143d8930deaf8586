#pragma once

#include "net/VLCall.h"
#include "net/VLDataTask.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace velmora {

class VLCachedRequestItem;
class VLSuggestionListDirectResponseModel;

using VLFailure = VLClientFailure;
template <class Result>
using VLSuccess = std::function<void(const Result& result)>;

/// Every address of the ad service, and one operation for each kind of call. Any thread; callbacks run on the
/// session's delegate queue. A 401 makes a call fetch an access token and try once more.
///
/// `failure` is required everywhere. `success` is required too, unless it says otherwise.
class VLWebServices {
public:
    VLWebServices() = delete;

    /// The service's API base, with no slash at its end: what VELMORA_API_BASE_URL says in the environment,
    /// else what the build was configured with. Plain http is meant for a loopback host; a request to any
    /// other ends in a transport error.
    [[nodiscard]] static std::string siteRootUrl();

    /// Identifiers are put in as they stand. Some addresses end in a slash and some do not.
    [[nodiscard]] static std::string getSuggestionsUrl();
    [[nodiscard]] static std::string getSuggestionSelectionUrl(const std::string& suggestionId);
    [[nodiscard]] static std::string getRewardsUrl();
    [[nodiscard]] static std::string getTrackerReportUrl();
    [[nodiscard]] static std::string getCrashReportUrl();
    [[nodiscard]] static std::string getTokenUrl();
    [[nodiscard]] static std::string getCachingStrategyUrl();
    [[nodiscard]] static std::string getVastUrlForZone(const std::optional<std::string>& zone);

    /// `success` may be empty.
    static void
    getAdSuggestionsWithBody(const std::shared_ptr<VLSerializedModel>& body,
                             const VLSuccess<std::shared_ptr<VLSuggestionListDirectResponseModel>>& success,
                             const VLFailure& failure);

    /// A GET, so that the body never reaches the service.
    static void sendCrashReportWithBody(const std::shared_ptr<VLSerializedModel>& body,
                                        const VLSuccess<std::optional<std::string>>& success,
                                        const VLFailure& failure);

    /// A GET of any address, without the library's headers.
    static void callUrl(const std::string& url, const VLSuccess<std::optional<std::string>>& success,
                        const VLFailure& failure);

    /// Reads the answer as a list of suggestions.
    static void getCachingStrategyForZoneId(
        const std::optional<std::string>& zoneId, std::int64_t doneCount, std::int64_t doingCount,
        const VLSuccess<std::shared_ptr<VLSuggestionListDirectResponseModel>>& success,
        const VLFailure& failure);

    /// Sends a request of the persistent queue, and clears what it reported from the store when it succeeds
    /// or is answered with status 500, before the callback. Both callbacks may be empty. Does nothing for a
    /// null item.
    static void callCachedRequest(const std::shared_ptr<VLCachedRequestItem>& item,
                                  const std::function<void(std::int64_t status)>& success,
                                  const VLFailure& failure);

    static std::shared_ptr<VLDataTask> callWebServiceOfMethod(const VLCall& call);
    /// The same with a record as the body; none when it is null.
    static std::shared_ptr<VLDataTask>
    callWebServiceOfMethod(VLCall call, const std::shared_ptr<VLSerializedModel>& withBody);
};

}  // namespace velmora
