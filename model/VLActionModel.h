#pragma once

#include "model/VLSerializedModel.h"

#include <cstdint>

namespace velmora {

/// What can follow a video.
enum class VLActionType : std::int64_t {
    page = 1,
};

/// What follows a video ad: the page that opens when the player has gone.
class VLActionModel final : public VLSerializedModel {
public:
    [[nodiscard]] bool isPage() const { return platform::equals(actionType, VLActionType::page); }
    /// Absent for what is no text.
    [[nodiscard]] std::optional<std::string> getActionUrl() const { return platform::asString(actionUrl); }

    Property actionType;  ///< a `VLActionType`, JSON key "type"; a missing entry reads as 0
    Property actionUrl;

private:
    [[nodiscard]] const Schema& schema() const override;
};

}  // namespace velmora
