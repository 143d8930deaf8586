#pragma once

#include <optional>
#include <string>
#include <vector>

namespace velmora::platform {

/// Facts of this device. Any thread; what the device does not tell is absent, and nothing waits.
class Device {
public:
    Device() = delete;

    /// The machine field of `uname`: the hardware's name.
    [[nodiscard]] static std::optional<std::string> machine();

    /// A UUID that stays the same for this application on this machine, and differs from that of every other:
    /// made of the machine's id, which cannot be found from it. Absent where the machine has no id.
    [[nodiscard]] static std::optional<std::string> identifierForVendor();

    /// A random UUID that all applications of this user share. The user resets it by deleting the file
    /// `velmora/advertising-id` of the configuration home (XDG Base Directory, 0.8). Absent when
    /// it can be neither read nor kept.
    [[nodiscard]] static std::optional<std::string> advertisingIdentifier();
};

}  // namespace velmora::platform
