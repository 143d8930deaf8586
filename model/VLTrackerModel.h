#pragma once

#include "model/VLSerializedModel.h"

#include <cstdint>
#include <optional>
#include <string>

namespace velmora {

/// A tracker that leads to another application. Read by no other part of the library.
class VLTrackerModel final : public VLSerializedModel {
public:
    VLTrackerModel() = default;
    VLTrackerModel(std::int64_t type, const std::optional<std::string>& andCustomUrl);

    Property type;
    Property customAppUrl;

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
