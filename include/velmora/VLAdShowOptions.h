#pragma once

#include <cstdint>
#include <memory>

#include <velmora/enumerations.h>
#include <velmora/export.h>

namespace velmora {

class VLAdShowOptionsState;

/// How an ad is shown. Safe to use from any thread.
class VELMORA_EXPORT VLAdShowOptions {
public:
    VLAdShowOptions();
    ~VLAdShowOptions();
    VLAdShowOptions(const VLAdShowOptions&) = delete;
    VLAdShowOptions& operator=(const VLAdShowOptions&) = delete;

    /// Which orientations the ad allows. On a desktop nothing is turned.
    void setOrientation(VLOrientation orientation) { setOrientation(static_cast<std::int64_t>(orientation)); }

    /// By its number.
    void setOrientation(std::int64_t orientation);

    /// The number that was set when it is that of a `VLOrientation`, otherwise that of `any`.
    [[nodiscard]] std::int64_t getOrientation() const;

    /// Takes `TYPE_DISABLE_BACK` as well as true: the video then has no exit button.
    void setBackDisabled(bool backDisabled);
    /// False while nothing was set.
    [[nodiscard]] bool getBackDisabled() const;

    /// With a dialog, leaving a video before its end does not by itself end the show.
    void setShowDialoged(bool showDialog);
    /// False while nothing was set.
    [[nodiscard]] bool getShowDialoged() const;

    /// For the library's own use.
    [[nodiscard]] VELMORA_INTERNAL VLAdShowOptionsState& state() const noexcept;

private:
    std::unique_ptr<VLAdShowOptionsState> state_;
};

}  // namespace velmora
