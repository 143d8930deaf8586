#pragma once

#include "model/VLHttpRequestMethod.h"
#include "model/VLSerializedModel.h"
#include "net/VLClientError.h"
#include "net/VLReceive.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace velmora {

/// Receives the HTTP status, always 200, and the result.
using VLClientSuccess = std::function<void(std::int64_t status, const VLResult& result)>;
using VLClientFailure = std::function<void(const VLClientError& error)>;

/// A request, and what becomes of its answer.
struct VLCall {
    VLHttpRequestMethod method = VLHttpRequestMethod::get;
    std::string url = {};
    /// Appended as they stand; an empty dictionary leaves a question mark.
    std::optional<Dictionary> params = {};
    /// JSON text, sent with POST and PUT only.
    std::optional<std::string> body = {};
    /// Whether the library's own headers go along, as they are when it is sent.
    bool includeCustomHeaders = false;
    /// Nobody waits for its answer: it goes on when the library is shut down.
    bool isReport = false;
    /// The class of the result; text when it is empty.
    VLReceive receive = {};
    /// Without it, `failure` is called in its place.
    VLClientSuccess success = {};
    VLClientFailure failure = {};
};

}  // namespace velmora
