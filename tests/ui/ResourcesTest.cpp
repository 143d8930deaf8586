#include "platform/Bundle.h"
#include "ui/Picture.h"

#include <filesystem>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

QImage picture(const std::string& name) {
    return QImage(QString::fromStdString(platform::Bundle::resourcePath(name + ".png").string()));
}

TEST(Resources, ThePicturesOfTheButtonsCanBeSeenOnAnyVideo) {
    std::vector<QImage> all;
    for (const char* name : {"Close", "Skip", "SoundOff", "SoundOn"}) {
        SCOPED_TRACE(name);
        const auto image = picture(name);
        ASSERT_EQ(image.size(), QSize(132, 132));
        EXPECT_EQ(image.pixelColor(1, 1).alpha(), 0);
        int light = 0;
        int dark = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const auto color = image.pixelColor(x, y);
                light += color.alpha() > 250 && color.lightness() > 250 ? 1 : 0;
                dark += color.alpha() > 100 && color.lightness() < 5 ? 1 : 0;
            }
        }
        EXPECT_GT(light, 400) << "for dark pictures";
        EXPECT_GT(dark, 10 * 400) << "for light ones";
        for (const auto& other : all) EXPECT_NE(image, other);
        all.push_back(image);
    }
}

TEST(Resources, EachFontHasItsLicenceBesideIt) {
    for (const char* name : {"Yekan.LICENSE.txt", "DastNevis.LICENSE.txt"})
        EXPECT_GT(std::filesystem::file_size(platform::Bundle::resourcePath(name)), 4000U) << name;
}

}  // namespace

}  // namespace velmora::test
