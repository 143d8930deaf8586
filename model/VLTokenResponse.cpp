#include "model/VLTokenResponse.h"

#include <utility>

namespace velmora {

VLTokenResponse::VLTokenResponse(std::optional<std::string> withToken) : token(std::move(withToken)) {}

void VLTokenResponse::setValuesForKeysWithDictionary(const platform::Dictionary* dictionary) {
    const auto* value = dictionary != nullptr ? dictionary->if_contains("token") : nullptr;
    if (value != nullptr) token = platform::asString(*value);
}

}  // namespace velmora
