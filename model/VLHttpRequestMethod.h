#pragma once

#include "platform/Value.h"

#include <cstdint>

namespace velmora {

/// The method of a request; the numbers are what the persistent queue stores. Any other number is a method
/// too: it is sent as "UNKNOWN" and stored as a GET.
enum class VLHttpRequestMethod : std::int64_t { get = 1, post = 2, put = 3 };

/// The method of a stored number; GET for an absent or an unknown one.
[[nodiscard]] VLHttpRequestMethod httpRequestMethodOf(const platform::Property& number);
/// The number to store; that of GET for an unknown method.
[[nodiscard]] std::int64_t numberOf(VLHttpRequestMethod method);

/// What to do about an answer with status 401; any other number is as `none`.
enum class VLRetryMode : std::int64_t {
    none = 0,          ///< report it
    withNewToken = 1,  ///< fetch an access token, store it, and send the request once more
    asItStands = 2,    ///< send the request once more
};

}  // namespace velmora
