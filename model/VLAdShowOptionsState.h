#pragma once

#include "model/AtomicProperty.h"
#include <velmora/VLAdShowOptions.h>

#include <cstdint>
#include <optional>

namespace velmora {

/// What was set of the show options; absent what was not. They are not stored.
class VLAdShowOptionsState {
public:
    AtomicProperty<std::optional<std::int64_t>> mOrientation;
    AtomicProperty<std::optional<bool>> mBackDisabled;
    AtomicProperty<std::optional<bool>> mShowDialog;
};

}  // namespace velmora
