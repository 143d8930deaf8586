#include "platform/Random.h"

#include <random>

#include <QRandomGenerator>

namespace velmora::platform {

std::uint32_t uniformRandom(std::uint32_t bound) {
    if (bound == 0) return 0;
    // The generator's own function for this maps its range onto the bound and favours some numbers.
    return std::uniform_int_distribution<std::uint32_t>(0, bound - 1)(*QRandomGenerator::global());
}

}  // namespace velmora::platform
