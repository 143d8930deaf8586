#include "net/VLClientError.h"

#include <utility>

namespace velmora {

VLClientError::VLClientError(std::optional<platform::UrlResponse> withResponse,
                             std::optional<platform::UrlError> withError)
    : response(std::move(withResponse)), error(std::move(withError)) {}

std::int64_t VLClientError::responseCode() const { return response ? response->statusCode : -1; }

}  // namespace velmora
