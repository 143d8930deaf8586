#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace velmora::platform {

/// How an address could be reached just now, as far as this machine's routes tell; no packet is sent.
struct Reachability {
    static constexpr std::uint32_t kReachable = 0x2;
    static constexpr std::uint32_t kConnectionRequired = 0x4;
    static constexpr std::uint32_t kCellular = 0x40000;

    Reachability() = delete;

    /// The flags above for a dotted IPv4 address; absent when the text is not one or the kernel does not
    /// answer.
    [[nodiscard]] static std::optional<std::uint32_t> flags(std::string_view address);
};

}  // namespace velmora::platform
