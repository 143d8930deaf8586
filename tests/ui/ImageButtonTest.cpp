#include "ui/ImageButton.h"

#include "harness/TemporaryDirectory.h"
#include "platform/Bundle.h"
#include "ui/ActivityIndicator.h"
#include "ui/Label.h"
#include "ui/Picture.h"
#include "ui/VLSimpleProgressView.h"

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

class ImageButtonTest : public testing::Test {
protected:
    [[nodiscard]] std::filesystem::path picture(const std::string& name, const QSize& size,
                                                const QColor& color) const {
        QImage image(size, QImage::Format_ARGB32);
        image.fill(color);
        const auto file = folder_ / name;
        EXPECT_TRUE(image.save(QString::fromStdString(file.string())));
        return file;
    }

    const TemporaryDirectory folder_;
    ImageButton button_{QRect(10, 20, 40, 40)};
};

TEST_F(ImageButtonTest, APictureKeepsItsShapeInTheMiddleOfTheButton) {
    const std::pair<QSize, QRect> cases[] = {
        {{20, 20}, {0, 0, 40, 40}},
        {{200, 100}, {0, 10, 40, 20}},
        {{10, 40}, {15, 0, 10, 40}},
    };
    EXPECT_EQ(button_.geometry(), QRect(10, 20, 40, 40));
    for (const auto& [size, shown] : cases) {
        button_.setImage(picture("a.png", size, Qt::red));
        const auto image = drawn(button_);
        EXPECT_EQ(inkBounds(image), shown);
        EXPECT_EQ(image.pixelColor(20, 20), QColor(Qt::red));
    }
    button_.setImage(picture("b.png", {10, 40}, Qt::green));
    EXPECT_EQ(drawn(button_).pixelColor(20, 20), QColor(Qt::green));
    button_.resize(20, 80);
    EXPECT_EQ(inkBounds(drawn(button_)), QRect(0, 0, 20, 80));
}

TEST_F(ImageButtonTest, APressedOneIsFainterAndOneWithoutAPictureShowsNothing) {
    button_.setImage(picture("a.png", {40, 40}, Qt::red));
    button_.setDown(true);
    EXPECT_NEAR(drawn(button_).pixelColor(20, 20).alpha(), 128, 2);
    button_.setImage(folder_ / "missing.png");
    EXPECT_EQ(button_.imageFile(), folder_ / "missing.png");
    EXPECT_EQ(ink(drawn(button_)), 0);
}

TEST_F(ImageButtonTest, TouchesGoThroughWhatLiesOverIt) {
    QWidget window;
    button_.setParent(&window);
    const QRect over = button_.geometry();
    Label label(&window);
    label.setGeometry(over);
    const VLSimpleProgressView ring(over, &window);
    ActivityIndicator spinner(&window);
    spinner.setGeometry(over);
    spinner.startAnimating();
    window.show();
    EXPECT_TRUE(label.isVisible() && ring.isVisible() && spinner.isVisible());
    EXPECT_EQ(window.childAt(over.center()), &button_);
    button_.setParent(nullptr);
}

TEST(Resources, ThePicturesOfTheButtonsCanBeSeenOnAnyVideo) {
    std::vector<QImage> all;
    for (const char* name : {"Close.png", "Skip.png", "SoundOff.png", "SoundOn.png"}) {
        SCOPED_TRACE(name);
        const QImage image(platform::Bundle::resourcePath(name).c_str());
        ASSERT_EQ(image.size(), QSize(132, 132));
        EXPECT_EQ(image.pixelColor(1, 1).alpha(), 0);
        int light = 0;
        int dark = 0;
        forEachPixel(image, [&](const QPoint&, const QColor& color) {
            light += color.alpha() > 250 && color.lightness() > 250 ? 1 : 0;
            dark += color.alpha() > 100 && color.lightness() < 5 ? 1 : 0;
        });
        EXPECT_GT(light, 400) << "for dark pictures";
        EXPECT_GT(dark, 10 * 400) << "for light ones";
        for (const auto& other : all) EXPECT_NE(image, other);
        all.push_back(image);
    }
}

}  // namespace

}  // namespace velmora::test
