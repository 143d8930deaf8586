#include "ui/Blur.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace velmora {

namespace {

constexpr int kChannels = 4;

/// A row or a column of a picture.
struct Run {
    uchar* first;
    qsizetype step;
    int length;

    [[nodiscard]] uchar* pixel(int index) const { return first + index * step; }
};

/// Each pixel becomes the mean of those up to `reach` away; there is nothing beyond the ends.
void average(const Run& run, int reach, std::vector<uchar>& before) {
    before.resize(static_cast<std::size_t>(run.length) * kChannels);
    for (int i = 0; i < run.length; ++i)
        std::copy_n(run.pixel(i), kChannels, &before[std::size_t(i) * kChannels]);
    const auto at = [&](int index) { return &before[static_cast<std::size_t>(index) * kChannels]; };

    std::array<int, kChannels> sum{};
    const int width = 2 * reach + 1;
    for (int i = -reach; i < run.length; ++i) {
        for (std::size_t c = 0; c < kChannels; ++c) {
            if (i + reach < run.length) sum[c] += at(i + reach)[c];
            if (i - reach > 0) sum[c] -= at(i - reach - 1)[c];
            if (i >= 0) run.pixel(i)[c] = static_cast<uchar>(sum[c] / width);
        }
    }
}

}  // namespace

void blur(QImage& image, double radius) {
    // Two passes of a mean this wide look like a bell of half the radius.
    const int reach = static_cast<int>(std::lround(std::min(radius, 100.0) / 2));
    if (reach < 1 || image.isNull()) return;
    std::vector<uchar> before;
    auto* bits = image.bits();
    for (int pass = 0; pass < 2; ++pass) {
        for (int y = 0; y < image.height(); ++y)
            average({bits + y * image.bytesPerLine(), kChannels, image.width()}, reach, before);
        for (int x = 0; x < image.width(); ++x)
            average({bits + qsizetype(x) * kChannels, image.bytesPerLine(), image.height()}, reach, before);
    }
}

}  // namespace velmora
