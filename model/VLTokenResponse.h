#pragma once

#include "platform/Value.h"

#include <optional>
#include <string>

namespace velmora {

/// An access token of the service. It is not a record: it is read out of an answer and never written.
class VLTokenResponse {
public:
    VLTokenResponse() = default;
    explicit VLTokenResponse(std::optional<std::string> token);

    [[nodiscard]] const std::optional<std::string>& getToken() const { return token; }

    /// Takes the text under "token"; any other kind there makes it absent. Null is an empty dictionary.
    void setValuesForKeysWithDictionary(const platform::Dictionary* dictionary);

    std::optional<std::string> token;
};

}  // namespace velmora
