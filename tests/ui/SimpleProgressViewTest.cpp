#include "ui/VLSimpleProgressView.h"

#include "ui/Picture.h"
#include "ui/VLRGBAColor.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

constexpr int kSize = 44;
constexpr int kFaint = 77;  // 0.3 of 255

/// How opaque the ring is at so many degrees clockwise from its top.
int alphaAt(const QImage& image, double degrees) {
    const auto angle = degrees * std::numbers::pi / 180;
    const double radius = kSize / 2.0 - 2.5;
    const auto x = kSize / 2.0 + radius * std::sin(angle);
    const auto y = kSize / 2.0 - radius * std::cos(angle);
    const auto ratio = image.devicePixelRatio();
    return image.pixelColor(static_cast<int>(x * ratio), static_cast<int>(y * ratio)).alpha();
}

QImage ring(double progress) {
    VLSimpleProgressView view(QRect(0, 0, kSize, kSize));
    view.setProgress(progress);
    return drawn(view, 4);
}

TEST(SimpleProgressView, TheRingFillsClockwiseFromItsTop) {
    const struct {
        double progress;
        std::vector<double> full;
        std::vector<double> faint;
    } cases[] = {
        // Round caps reach half a line's width, 5.9 degrees, beyond both ends; the end lies 0.45 degrees on.
        {0, {-5, 0.5, 5}, {-8, 8, 20, 90, 180, 270, 340}},
        {0.25, {1, 45, 90}, {110, 180, 270, 340}},
        {0.5, {1, 90, 180}, {200, 270, 340}},
        {0.75, {1, 90, 180, 270}, {290, 340}},
        {1, {1, 90, 180, 270, 350}, {}},
        {1.25, {1, 90, 180, 270, 350}, {}},
        {1e9, {1, 90, 180, 270, 350}, {}},
        {-0.25, {1, 90, 180, 270}, {290, 340}},
        {std::numeric_limits<double>::quiet_NaN(), {}, {1, 90, 180, 270}},
        {std::numeric_limits<double>::infinity(), {}, {1, 90, 180, 270}},
    };

    for (const auto& [progress, full, faint] : cases) {
        SCOPED_TRACE(progress);
        const auto image = ring(progress);
        for (const auto degrees : full) EXPECT_EQ(alphaAt(image, degrees), 255) << degrees;
        for (const auto degrees : faint) EXPECT_NEAR(alphaAt(image, degrees), kFaint, 1) << degrees;
    }
}

TEST(SimpleProgressView, TheRingIsItsLinesAndNothingElse) {
    const auto image = ring(0.5);
    EXPECT_EQ(image.pixelColor(88, 88).alpha(), 0) << "the middle";
    EXPECT_EQ(image.pixelColor(2, 2).alpha(), 0) << "the corner";
    // Four to the pixel: the track is 5 wide and ends at the edge, the arc in its middle is 4 wide.
    for (const auto& [x, alpha] :
         {std::pair(1, kFaint), {18, kFaint}, {22, 0}, {156, kFaint}, {159, 255}, {172, 255}, {174, kFaint}})
        EXPECT_NEAR(image.pixelColor(x, 88).alpha(), alpha, 2) << x;
}

TEST(SimpleProgressView, NothingIsDrawnWhileItIsHiddenOrSmallerThanItsLine) {
    VLSimpleProgressView small(QRect(0, 0, 4, 4));
    EXPECT_EQ(ink(drawn(small)), 0);
    VLSimpleProgressView view(QRect(0, 0, kSize, kSize));
    EXPECT_GT(ink(drawn(view)), 0);
    view.hide();
    EXPECT_EQ(ink(drawn(view)), 0);
    view.show();
    EXPECT_GT(ink(drawn(view)), 0);
}

TEST(SimpleProgressView, ItsColourIsGreyUntilOneIsSet) {
    VLSimpleProgressView view(QRect(0, 0, kSize, kSize));
    EXPECT_EQ(view.progress(), 0);
    EXPECT_EQ(view.tintColor(), colorWithR(132, 133, 133, 1.0));
    view.setTintColor(QColor(Qt::red));
    view.setProgress(1);
    EXPECT_EQ(drawn(view, 4).pixelColor(88, 176 - 10), QColor(Qt::red));
    view.setTintColor(std::nullopt);
    EXPECT_EQ(drawn(view, 4).pixelColor(88, 176 - 10), view.tintColor());
}

}  // namespace

}  // namespace velmora::test
