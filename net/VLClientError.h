#pragma once

#include "platform/UrlSession.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// Why a call of the service failed: the one failure value of every call.
class VLClientError {
public:
    VLClientError(std::optional<platform::UrlResponse> response, std::optional<platform::UrlError> error);

    /// Whether the exchange itself failed, rather than being answered with a status that is no success.
    [[nodiscard]] bool connectionError() const { return error.has_value(); }

    /// The HTTP status; -1 when there was no answer.
    [[nodiscard]] std::int64_t responseCode() const;

    std::optional<platform::UrlResponse> response;
    std::optional<platform::UrlError> error;
};

}  // namespace velmora
