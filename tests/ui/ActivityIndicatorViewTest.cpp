#include "ui/VLActivityIndicatorView.h"

#include "ui/Picture.h"

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

TEST(ActivityIndicatorView, ItIsHiddenUntilItIsStartedAndTurnsOnlyWhileItsWindowIsThere) {
    QWidget window;
    VLActivityIndicatorView view(QRect(0, 0, 100, 100), &window);
    window.show();
    EXPECT_FALSE(view.isVisible());
    view.startAnimating();
    EXPECT_TRUE(view.spinner()->isVisible());
    EXPECT_TRUE(view.textLabel()->isVisible());
    EXPECT_TRUE(view.spinner()->isTurning());

    window.hide();
    EXPECT_FALSE(view.spinner()->isTurning());
    EXPECT_TRUE(view.spinner()->isAnimating());
    window.show();
    EXPECT_TRUE(view.spinner()->isTurning());

    view.stopAnimating();
    EXPECT_FALSE(view.isVisible());
    EXPECT_FALSE(view.spinner()->isAnimating());
    EXPECT_FALSE(view.spinner()->isTurning());
}

TEST(ActivityIndicatorView, TheSpinnersFrontIsAtItsTopAndTheRestFadesBehindIt) {
    ActivityIndicator spinner;
    spinner.startAnimating();
    const auto first = drawn(spinner);
    EXPECT_EQ(first.pixelColor(18, 6), QColor(Qt::white));
    EXPECT_LT(first.pixelColor(24, 7).alpha(), 80);
}

TEST(ActivityIndicatorView, SpinnerAndCaptionLieWhereTheSizeHasThem) {
    VLActivityIndicatorView view(QRect(30, 40, 100, 100));
    view.startAnimating();
    for (const auto& size : {QSize(100, 100), QSize(160, 220), QSize(75, 91)}) {
        SCOPED_TRACE(testing::Message() << size.width() << " x " << size.height());
        view.resize(size);
        const double labelHeight = view.textLabel()->height();
        const QPointF spinner(size.width() / 2.0, size.height() / 2.0 - 10);
        const QPointF label(size.width() / 2.0, size.height() - labelHeight / 2 - 10);
        // Whole pixels are as near as a widget gets to a centre.
        EXPECT_LE((QRectF(view.spinner()->geometry()).center() - spinner).manhattanLength(), 1);
        EXPECT_LE((QRectF(view.textLabel()->geometry()).center() - label).manhattanLength(), 1);
    }
}

TEST(ActivityIndicatorView, TheCaptionIsWhiteOnARoundedDarkPanel) {
    VLActivityIndicatorView view(QRect(0, 0, 100, 100));
    EXPECT_EQ(view.textLabel()->text(), QString::fromUtf8("برقراری ارتباط..."));
    EXPECT_EQ(view.textLabel()->attributes().foregroundColor, QColor(Qt::white));

    view.startAnimating();
    const auto image = drawn(view);
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
    EXPECT_LT(image.pixelColor(2, 2).alpha(), 20) << "cut off by a radius of 10";
    EXPECT_EQ(image.pixelColor(4, 4).alpha(), 230);
    EXPECT_EQ(image.pixelColor(50, 2), QColor(0, 0, 0, 230));
    EXPECT_GT(ink(drawn(*view.textLabel())), 50);
}

}  // namespace

}  // namespace velmora::test
