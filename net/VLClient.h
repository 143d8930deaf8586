#pragma once

#include "model/VLSerializedModel.h"
#include "net/VLClientError.h"
#include "net/VLDataTask.h"
#include "net/VLHttpRequestMethod.h"
#include "net/VLReceive.h"
#include "net/VLRequestHeaders.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace velmora {

/// Receives the HTTP status, always 200, and the result.
using VLClientSuccess = std::function<void(std::int64_t status, const VLResult& result)>;
using VLClientFailure = std::function<void(const VLClientError& error)>;

/// The single place where the library talks HTTP. Any thread; callbacks run on the session's delegate queue.
///
/// A request ends in one call of `success` or of `failure`; a cancelled one in neither. Success is an answer
/// with status 200 and nothing else. When no `success` is given, `failure` is called in its place.
class VLClient {
public:
    VLClient() = delete;

    /// Sends one request, with no second attempt.
    ///
    /// The body is sent with POST and PUT only. Parameters are appended as they stand, and the whole URL is
    /// percent-encoded once. The library's headers are those of this moment. A result class that is empty
    /// means text.
    static std::shared_ptr<VLDataTask> sendRequestOfMethod(
        VLHttpRequestMethod method, const std::string& toPath, const std::optional<Dictionary>& withParams,
        const std::optional<Dictionary>& withBody, bool andIncludeCustomHeaders, const VLReceive& receive,
        const VLClientSuccess& success, const VLClientFailure& failure);

    /// The same with a second attempt after a 401, as `retry` says. `failure` is required. The task is that
    /// of the first attempt: cancelling it stops no later one.
    static std::shared_ptr<VLDataTask> sendRequestOfMethod(
        VLHttpRequestMethod method, const std::string& toPath, const std::optional<Dictionary>& withParams,
        const std::optional<Dictionary>& withDictBody, bool andIncludeCustomHeaders, const VLReceive& receive,
        const VLClientSuccess& success, const VLClientFailure& failure, VLRetryMode retry);

    /// The same with a record as the body; none when it is null.
    static std::shared_ptr<VLDataTask>
    sendRequestOfMethod(VLHttpRequestMethod method, const std::string& toPath,
                        const std::optional<Dictionary>& withParams,
                        const std::shared_ptr<VLSerializedModel>& withBody, bool andIncludeCustomHeaders,
                        const VLReceive& receive, const VLClientSuccess& success,
                        const VLClientFailure& failure, VLRetryMode retry);

    /// A request with the fixed headers, and after them the given ones, which replace fixed ones of the same
    /// name.
    [[nodiscard]] static platform::UrlRequest requestWithURL(const std::string& url, const std::string& kind,
                                                             const std::optional<std::string>& data,
                                                             const std::optional<VLHeaders>& headers);

    /// The vendor identifier of the device; absent when it has none.
    [[nodiscard]] static std::optional<std::string> getDeviceId();

    /// "GET", "POST", "PUT", else "UNKNOWN".
    [[nodiscard]] static std::string getStringOfHttpRequestMethod(VLHttpRequestMethod method);
    /// The number of a method; that of GET for an unknown one.
    [[nodiscard]] static std::int64_t getNumberOfHttpRequestMethod(VLHttpRequestMethod method);
    /// The method of a number; GET for an absent or an unknown one.
    [[nodiscard]] static VLHttpRequestMethod getHttpRequestMethodOfNumber(const Property& number);
};

}  // namespace velmora
