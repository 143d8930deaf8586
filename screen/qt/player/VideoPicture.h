#pragma once

#include <QImage>
#include <QVideoFrame>

namespace velmora::screen {

/// Draws the frame into `picture`, whose memory is used again when the size is the same. Colours are those of
/// the video's own colour space and range; the picture stands upright.
void drawFrame(const QVideoFrame& frame, QImage& picture);

}  // namespace velmora::screen
