#pragma once

#include <cstdint>

namespace velmora::platform {

/// A number from 0 up to but not including `bound`, each equally likely; 0 for a bound of 0. Any thread.
[[nodiscard]] std::uint32_t uniformRandom(std::uint32_t bound);

}  // namespace velmora::platform
