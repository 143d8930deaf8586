#pragma once

#include "model/VLHttpRequestMethod.h"
#include "model/VLSerializedModel.h"
#include "net/VLCall.h"
#include "net/VLDataTask.h"
#include "net/VLRequestHeaders.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace velmora {

/// The single place where the library talks HTTP. Any thread; callbacks run on the session's delegate queue.
///
/// A call ends in its `success` or in its `failure`, once; a cancelled one in neither. Success is an answer
/// with status 200 and nothing else.
class VLClient {
public:
    VLClient() = delete;

    /// Sends it, with no second attempt. The whole URL is percent-encoded once.
    static std::shared_ptr<VLDataTask> sendRequestOfMethod(const VLCall& call);

    /// The same with a second attempt after a 401, as `retry` says. `failure` is required. The task is that
    /// of the first attempt: cancelling it stops no later one.
    static std::shared_ptr<VLDataTask> sendRequestOfMethod(const VLCall& call, VLRetryMode retry);

    /// The same with a record as the body; none when it is null.
    static std::shared_ptr<VLDataTask>
    sendRequestOfMethod(VLCall call, const std::shared_ptr<VLSerializedModel>& withBody, VLRetryMode retry);

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
