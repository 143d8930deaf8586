#include "ui/Blur.h"

#include <utility>

#include <gtest/gtest.h>

#include <QImage>

namespace velmora::test {

namespace {

/// A white square on nothing.
QImage square(const QRect& white) {
    QImage image(41, 31, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    for (int y = white.top(); y <= white.bottom(); ++y)
        for (int x = white.left(); x <= white.right(); ++x) image.setPixelColor(x, y, Qt::white);
    return image;
}

QImage blurred(QImage image, double radius) {
    blur(image, radius);
    return image;
}

TEST(Blur, ItSpreadsByTwoMeansInEachDirection) {
    // Seven in a row, and twice the mean of seven around each: so many forty-ninths at each distance.
    constexpr int kProfile[] = {37, 36, 33, 28, 21, 15, 10, 6, 3, 1, 0, 0};
    const auto image = blurred(square({17, 12, 7, 7}), 6);
    for (int away = 0; away < 12; ++away) {
        const double expected = 255.0 * kProfile[0] * kProfile[away] / (49 * 49);
        for (const auto& step : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)})
            EXPECT_NEAR(image.pixelColor(QPoint(20, 15) + away * step).alpha(), expected, 4) << away;
    }
}

TEST(Blur, NothingComesFromBeyondTheEdgesAndItsReachIsBounded) {
    const auto image = blurred(square({0, 0, 1, 1}), 2);
    for (const auto& [at, alpha] : {std::pair(0, 12), {1, 12}, {2, 3}, {3, 0}})
        EXPECT_NEAR(image.pixelColor(at, at).alpha(), alpha, 1) << at;
    EXPECT_EQ(image.pixelColor(40, 30).alpha(), 0);
    EXPECT_EQ(blurred(square({40, 30, 1, 1}), 2).mirrored(true, true), image);
    const auto dot = square({20, 15, 1, 1});
    EXPECT_EQ(blurred(dot, 0.9), dot);
    EXPECT_NE(blurred(dot, 1), dot);
    EXPECT_EQ(blurred(dot, 1e9), blurred(dot, 100));
}

}  // namespace

}  // namespace velmora::test
