#include "platform/desktop/VideoPicture.h"

#include <algorithm>
#include <cmath>

#include <QTransform>

namespace velmora::platform {

namespace {

// Qt's own conversion on the processor takes every video for one of the BT.601 colour space, which shows most
// videos of 720 lines and more in wrong colours; the common layouts are therefore converted here.

/// The weights of the conversion to red, green and blue, in 1/65536.
struct Weights {
    int black;
    int luma;
    int redOfV;
    int greenOfU;
    int greenOfV;
    int blueOfU;
};

struct Primaries {
    double red;
    double blue;
};

Primaries primariesOf(const QVideoFrameFormat& format) {
    constexpr Primaries bt601{0.299, 0.114};
    constexpr Primaries bt709{0.2126, 0.0722};
    constexpr Primaries bt2020{0.2627, 0.0593};
    switch (format.colorSpace()) {
    case QVideoFrameFormat::ColorSpace_BT601: return bt601;
    case QVideoFrameFormat::ColorSpace_BT709: return bt709;
    case QVideoFrameFormat::ColorSpace_BT2020: return bt2020;
    default: return format.frameHeight() > 576 ? bt709 : bt601;
    }
}

Weights weightsOf(const QVideoFrameFormat& format) {
    const auto [red, blue] = primariesOf(format);
    const double green = 1 - red - blue;
    const bool isFull = format.colorRange() == QVideoFrameFormat::ColorRange_Full;
    const double luma = isFull ? 1.0 : 255.0 / 219;
    const double chroma = isFull ? 1.0 : 255.0 / 224;
    const auto fixed = [](double weight) { return static_cast<int>(std::lround(weight * 65536)); };
    return {.black = isFull ? 0 : 16,
            .luma = fixed(luma),
            .redOfV = fixed(2 * (1 - red) * chroma),
            .greenOfU = fixed(-2 * (1 - blue) * blue / green * chroma),
            .greenOfV = fixed(-2 * (1 - red) * red / green * chroma),
            .blueOfU = fixed(2 * (1 - blue) * chroma)};
}

/// One line of each plane; `step` bytes lie between the colours of neighbouring pairs of pixels.
struct Line {
    const uchar* luma;
    const uchar* u;
    const uchar* v;
    int step;
};

int channel(int weighted) { return std::clamp((weighted + 32768) >> 16, 0, 255); }

void drawLine(const Line& line, const Weights& weights, int width, QRgb* pixels) {
    for (int x = 0; x < width; ++x) {
        const int pair = x / 2 * line.step;
        const int luma = weights.luma * (line.luma[x] - weights.black);
        const int u = line.u[pair] - 128;
        const int v = line.v[pair] - 128;
        pixels[x] = qRgb(channel(luma + weights.redOfV * v),
                         channel(luma + weights.greenOfU * u + weights.greenOfV * v),
                         channel(luma + weights.blueOfU * u));
    }
}

/// Where the colours lie, a line for every two of the picture's.
struct Layout {
    int planeOfU;
    int planeOfV;
    int offsetOfU;
    int offsetOfV;
    int step;
};

const Layout* layoutOf(QVideoFrameFormat::PixelFormat format) {
    static constexpr Layout yuv420p{1, 2, 0, 0, 1};
    static constexpr Layout yv12{2, 1, 0, 0, 1};
    static constexpr Layout nv12{1, 1, 0, 1, 2};
    static constexpr Layout nv21{1, 1, 1, 0, 2};
    switch (format) {
    case QVideoFrameFormat::Format_YUV420P: return &yuv420p;
    case QVideoFrameFormat::Format_YV12: return &yv12;
    case QVideoFrameFormat::Format_NV12: return &nv12;
    case QVideoFrameFormat::Format_NV21: return &nv21;
    default: return nullptr;
    }
}

void drawPlanes(const QVideoFrame& frame, const Layout& layout, QImage& picture) {
    const auto weights = weightsOf(frame.surfaceFormat());
    const auto line = [&](int plane, int y) { return frame.bits(plane) + y * frame.bytesPerLine(plane); };
    for (int y = 0; y < frame.height(); ++y) {
        const Line planes{.luma = line(0, y),
                          .u = line(layout.planeOfU, y / 2) + layout.offsetOfU,
                          .v = line(layout.planeOfV, y / 2) + layout.offsetOfV,
                          .step = layout.step};
        drawLine(planes, weights, frame.width(), reinterpret_cast<QRgb*>(picture.scanLine(y)));
    }
}

/// False for other layouts than those above, and when the frame cannot be read.
bool drawPlain(QVideoFrame frame, QImage& picture) {
    const auto* layout = layoutOf(frame.pixelFormat());
    if (layout == nullptr || !frame.map(QVideoFrame::ReadOnly)) return false;
    if (picture.size() != frame.size() || picture.format() != QImage::Format_RGB32)
        picture = QImage(frame.size(), QImage::Format_RGB32);
    if (!picture.isNull()) drawPlanes(frame, *layout, picture);
    frame.unmap();
    return true;
}

}  // namespace

void drawFrame(const QVideoFrame& frame, QImage& picture) {
    if (!drawPlain(frame, picture)) {
        picture = frame.toImage();
        return;
    }
    if (frame.mirrored()) picture = picture.mirrored(true, false);
    if (const int angle = frame.rotationAngle(); angle != 0)
        picture = picture.transformed(QTransform().rotate(angle));
}

}  // namespace velmora::platform
