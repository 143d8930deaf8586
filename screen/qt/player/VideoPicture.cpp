#include "screen/qt/player/VideoPicture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <QTransform>

namespace velmora::screen {

namespace {

// Qt's own conversion on the processor takes every video for one of the BT.601 colour space, which shows most
// videos of 720 lines and more in wrong colours; the common layouts are therefore converted here.

/// The weights of the conversion to red, green and blue, in 1/8192. All is reckoned in numbers of 16 bits,
/// which processors take eight and more at a time.
struct Weights {
    std::int16_t black;
    std::int16_t luma;
    std::int16_t redOfV;
    std::int16_t greenOfU;
    std::int16_t greenOfV;
    std::int16_t blueOfU;
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
    const auto fixed = [](double weight) { return static_cast<std::int16_t>(std::lround(weight * 8192)); };
    return {.black = static_cast<std::int16_t>(isFull ? 0 : 16),
            .luma = fixed(luma),
            .redOfV = fixed(2 * (1 - red) * chroma),
            .greenOfU = fixed(-2 * (1 - blue) * blue / green * chroma),
            .greenOfV = fixed(-2 * (1 - red) * red / green * chroma),
            .blueOfU = fixed(2 * (1 - blue) * chroma)};
}

/// In 1/16. Eight bits of `value` lie before its point, and a sign.
std::int16_t weigh(int value, std::int16_t weight) {
    return static_cast<std::int16_t>((static_cast<std::int16_t>(value * 128) * weight) >> 16);
}

/// What the colours of a line add to its luma, for each pixel, in 1/16.
struct Tint {
    explicit Tint(int width) : red(roundUp(width)), green(roundUp(width)), blue(roundUp(width)) {}

    /// Two pixels have one colour.
    static std::size_t roundUp(int width) { return (static_cast<std::size_t>(width) + 1) / 2 * 2; }

    std::vector<std::int16_t> red;
    std::vector<std::int16_t> green;
    std::vector<std::int16_t> blue;
};

/// `step` bytes lie between the colours of neighbouring pairs of pixels.
template <int step>
void mixLine(const uchar* uLine, const uchar* vLine, const Weights& weights, Tint& tint) {
    const std::size_t pairs = tint.red.size() / 2;
    std::int16_t* const red = tint.red.data();
    std::int16_t* const green = tint.green.data();
    std::int16_t* const blue = tint.blue.data();
    const Weights by = weights;
    for (std::size_t pair = 0; pair < pairs; ++pair) {
        const int u = uLine[pair * step] - 128;
        const int v = vLine[pair * step] - 128;
        red[2 * pair] = red[2 * pair + 1] = weigh(v, by.redOfV);
        green[2 * pair] = green[2 * pair + 1] =
            static_cast<std::int16_t>(weigh(u, by.greenOfU) + weigh(v, by.greenOfV));
        blue[2 * pair] = blue[2 * pair + 1] = weigh(u, by.blueOfU);
    }
}

QRgb channel(std::int16_t sixteenths) {
    const auto level = static_cast<std::int16_t>(static_cast<std::int16_t>(sixteenths + 8) >> 4);
    return static_cast<QRgb>(std::clamp<std::int16_t>(level, 0, 255));
}

void drawLine(const uchar* luma, const Tint& tint, const Weights& weights, int width, QRgb* pixels) {
    const std::int16_t* const red = tint.red.data();
    const std::int16_t* const green = tint.green.data();
    const std::int16_t* const blue = tint.blue.data();
    const Weights by = weights;
    for (int x = 0; x < width; ++x) {
        const std::int16_t grey = weigh(luma[x] - by.black, by.luma);
        pixels[x] = 0xFF000000U | channel(static_cast<std::int16_t>(grey + red[x])) << 16 |
                    channel(static_cast<std::int16_t>(grey + green[x])) << 8 |
                    channel(static_cast<std::int16_t>(grey + blue[x]));
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
    const auto line = [&](int plane, int y) {
        return frame.bits(plane) + std::ptrdiff_t{y} * frame.bytesPerLine(plane);
    };
    const auto mix = layout.step == 1 ? mixLine<1> : mixLine<2>;
    Tint tint(frame.width());
    for (int y = 0; y < frame.height(); ++y) {
        // Two lines have one colour.
        if (y % 2 == 0)
            mix(line(layout.planeOfU, y / 2) + layout.offsetOfU,
                line(layout.planeOfV, y / 2) + layout.offsetOfV, weights, tint);
        drawLine(line(0, y), tint, weights, frame.width(), reinterpret_cast<QRgb*>(picture.scanLine(y)));
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

}  // namespace velmora::screen
