#pragma once

#include <cstdint>
#include <memory>

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

    /// 1 portrait, 2 landscape left, 3 any, 4 landscape right, 5 portrait upside down.
    void setOrientation(std::int64_t orientation);

    /// What was set when it is one of the five values above, otherwise 3.
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
