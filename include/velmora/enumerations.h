#pragma once

/// The numbers that an application passes and reads, by name. Wherever one is taken, its number is taken too.

#include <cstdint>

namespace velmora {

/// How the video of an ad reaches the player.
enum class VLCacheType : std::int64_t {
    cached = 1,    ///< downloaded before the ad is offered
    streamed = 2,  ///< played from its URL
};

/// Which orientations of a phone's screen an ad allows while it is shown.
enum class VLOrientation : std::int64_t {
    portrait = 1,
    landscapeLeft = 2,
    any = 3,
    landscapeRight = 4,
    portraitUpsideDown = 5,
};

/// The kind of pre-roll that a VAST URL asks for, by what the sandbox ad service makes of the numbers.
enum class VLPrerollType : int {
    notSkippable = 1,
    skippable = 2,
};

/// The version of VAST that a VAST URL asks for.
enum class VLVastVersion : int {
    v2 = 2,
    v3 = 3,
};

/// The numbers that the options answer with compare with the names.
[[nodiscard]] constexpr bool operator==(std::int64_t number, VLCacheType type) noexcept {
    return number == static_cast<std::int64_t>(type);
}

[[nodiscard]] constexpr bool operator==(std::int64_t number, VLOrientation orientation) noexcept {
    return number == static_cast<std::int64_t>(orientation);
}

}  // namespace velmora
