#include "platform/Random.h"

#include <random>

namespace velmora::platform {

std::uint32_t uniformRandom(std::uint32_t bound) {
    if (bound == 0) return 0;
    static thread_local std::mt19937 generator{std::random_device()()};
    return std::uniform_int_distribution<std::uint32_t>(0, bound - 1)(generator);
}

}  // namespace velmora::platform
