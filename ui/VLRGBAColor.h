#pragma once

#include <QColor>

namespace velmora {

/// The colour of channels from 0 to 255 and of an alpha from 0 to 1.
///
/// A channel above 255 is not cut off: such a colour keeps it, brighter than what a screen shows, and is
/// drawn at full strength. What lies beyond the largest number that a colour holds (65504 times full
/// strength) is that number. An alpha outside of its range is the nearest in it, not-a-number is 0: a colour
/// that is not valid would be drawn as black.
[[nodiscard]] QColor colorWithR(unsigned int red, unsigned int green, unsigned int blue, double alpha);

}  // namespace velmora
