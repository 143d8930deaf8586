#pragma once

#include <QImage>

namespace velmora {

/// Blurs what was drawn in one colour into an ARGB32_Premultiplied picture, by about `radius` of its pixels.
/// Ink within twice the radius of an edge loses some of its blur there.
void blur(QImage& image, double radius);

}  // namespace velmora
