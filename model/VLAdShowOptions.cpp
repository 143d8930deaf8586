#include <velmora/VLAdShowOptions.h>

#include "model/VLAdShowOptionsState.h"

namespace velmora {

VLAdShowOptions::VLAdShowOptions() : state_(std::make_unique<VLAdShowOptionsState>()) {}

VLAdShowOptions::~VLAdShowOptions() = default;

void VLAdShowOptions::setOrientation(std::int64_t orientation) { state_->mOrientation.set(orientation); }

std::int64_t VLAdShowOptions::getOrientation() const {
    constexpr auto first = static_cast<std::int64_t>(VLOrientation::portrait);
    constexpr auto last = static_cast<std::int64_t>(VLOrientation::portraitUpsideDown);
    constexpr auto any = static_cast<std::int64_t>(VLOrientation::any);
    const auto orientation = state_->mOrientation.get().value_or(any);
    return orientation >= first && orientation <= last ? orientation : any;
}

void VLAdShowOptions::setBackDisabled(bool backDisabled) { state_->mBackDisabled.set(backDisabled); }

bool VLAdShowOptions::getBackDisabled() const { return state_->mBackDisabled.get().value_or(false); }

void VLAdShowOptions::setShowDialoged(bool showDialog) { state_->mShowDialog.set(showDialog); }

bool VLAdShowOptions::getShowDialoged() const { return state_->mShowDialog.get().value_or(false); }

VLAdShowOptionsState& VLAdShowOptions::state() const noexcept { return *state_; }

}  // namespace velmora
