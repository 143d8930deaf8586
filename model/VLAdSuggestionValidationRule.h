#pragma once

#include "model/VLSerializedModel.h"

#include <cstdint>
#include <optional>
#include <string>

namespace velmora {

/// A rule about another application on the device. Read by no other part of the library.
class VLAdSuggestionValidationRule final : public VLSerializedModel {
public:
    VLAdSuggestionValidationRule() = default;
    VLAdSuggestionValidationRule(std::int64_t type, const std::optional<std::string>& andCustomAppUrl);

    Property type;
    Property customAppUrl;

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
