#include "ui/VLRGBAColor.h"

#include <algorithm>

namespace velmora {

namespace {

/// The largest value of the half-precision numbers in which such a colour keeps its channels.
constexpr float kLargestChannel = 65504.0F;

float channel(unsigned int value) { return std::min(static_cast<float>(value) / 255.0F, kLargestChannel); }

}  // namespace

QColor colorWithR(unsigned int red, unsigned int green, unsigned int blue, double alpha) {
    const auto opacity = alpha > 0 ? static_cast<float>(std::min(alpha, 1.0)) : 0.0F;
    return QColor::fromRgbF(channel(red), channel(green), channel(blue), opacity);
}

}  // namespace velmora
