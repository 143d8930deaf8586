#include "ui/VLTextAttributes.h"

#include "harness/TemporaryDirectory.h"
#include "platform/Bundle.h"
#include "support/Environment.h"
#include "support/Program.h"
#include "ui/VLRGBAColor.h"

#include <filesystem>
#include <fstream>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include <QFontInfo>

namespace velmora::test {

namespace {

constexpr ParagraphStyle kDefaultStyle{TextAlignment::right, WritingDirection::rightToLeft,
                                       LineBreakMode::byTruncatingTail};
constexpr ParagraphStyle kFunStyle{TextAlignment::center, WritingDirection::rightToLeft,
                                   LineBreakMode::byWordWrapping};

TEST(TextAttributes, EachStyleHasItsFontAndItsParagraphs) {
    VLTextAttributes::loadBundleFonts();
    const struct {
        VLTextAttributes attributes;
        const char* family;
        int size;
        ParagraphStyle style;
    } cases[] = {
        {VLTextAttributes::defaultTextAttributes(), "Web Yekan", 16, kDefaultStyle},
        {VLTextAttributes::defaultTextAttributesWithFontSize(14.0), "Web Yekan", 14, kDefaultStyle},
        {VLTextAttributes::funTextAttributes(), "Dast Nevis", 16, kFunStyle},
        {VLTextAttributes::funTextAttributesWithFontSize(30.5), "Dast Nevis", 31, kFunStyle},
    };

    for (const auto& [attributes, family, size, style] : cases) {
        SCOPED_TRACE(size);
        const auto dictionary = attributes.attributes();
        ASSERT_TRUE(dictionary.font);
        EXPECT_EQ(QFontInfo(*dictionary.font).family(), family);
        EXPECT_EQ(dictionary.font->pixelSize(), size);
        EXPECT_EQ(dictionary, (TextAttributeDictionary{.font = dictionary.font, .paragraphStyle = style}));
    }
}

std::string fontsOfAFreshProcess() { return runProgram({VELMORA_FONT_REPORT}).output; }

TEST(TextAttributes, TheFunStyleReliesOnOthersToLoadItsFontAndOneThatIsMissingOrBrokenLeavesNoEntry) {
    EXPECT_EQ(fontsOfAFreshProcess(), "fun 0, then default 1, fun 1; added 2");

    const TemporaryDirectory folder;
    const auto working = platform::Bundle::resourcePath("DastNevis.otf");
    const Environment resources("VELMORA_RESOURCES", folder.path().c_str());
    EXPECT_EQ(fontsOfAFreshProcess(), "fun 0, then default 0, fun 0; added 0");

    std::ofstream(folder / "Yekan.ttf") << "no font";
    std::filesystem::copy_file(working, folder / "DastNevis.otf");
    EXPECT_EQ(fontsOfAFreshProcess(), "fun 0, then default 0, fun 1; added 1");
}

TEST(TextAttributes, AFontSizeIsOneOfTheDefaultFontAndTheNearestThatAFontHas) {
    VLTextAttributes::loadBundleFonts();
    auto attributes = VLTextAttributes::funTextAttributes();
    for (const auto& [size, pixels] : {std::pair{20.0, 20},
                                       {0.0, 1},
                                       {-5.0, 1},
                                       {std::numeric_limits<double>::quiet_NaN(), 1},
                                       {1e300, 1000}}) {
        SCOPED_TRACE(size);
        attributes.setFontSize(size);
        ASSERT_TRUE(attributes.attributes().font);
        EXPECT_EQ(attributes.attributes().font->family(), "Web Yekan");
        EXPECT_EQ(attributes.attributes().font->pixelSize(), pixels);
    }
    EXPECT_EQ(attributes.style(), kFunStyle);
}

TEST(TextAttributes, ModeAndAlignmentCarryDifferentThingsOver) {
    using enum LineBreakMode;
    const auto style = [](auto start, const auto& change) {
        change(start);
        return start.style();
    };
    constexpr auto rightToLeft = WritingDirection::rightToLeft;
    VLTextAttributes leftToRight;
    leftToRight.setStyle(ParagraphStyle{TextAlignment::left, WritingDirection::leftToRight, byClipping});

    EXPECT_EQ(style(VLTextAttributes(), [](auto& it) { it.setLineBreakMode(byCharWrapping); }),
              (ParagraphStyle{TextAlignment::natural, rightToLeft, byCharWrapping}));
    EXPECT_EQ(style(VLTextAttributes(), [](auto& it) { it.setAlignment(TextAlignment::left); }),
              (ParagraphStyle{TextAlignment::left, rightToLeft, byTruncatingTail}));
    EXPECT_EQ(style(leftToRight, [](auto& it) { it.setLineBreakMode(byTruncatingHead); }),
              (ParagraphStyle{TextAlignment::left, WritingDirection::leftToRight, byTruncatingHead}));
    EXPECT_EQ(style(leftToRight, [](auto& it) { it.setAlignment(TextAlignment::right); }),
              (ParagraphStyle{TextAlignment::right, WritingDirection::leftToRight, byTruncatingTail}));
}

TEST(Resources, EachFontHasItsLicenceBesideIt) {
    for (const char* name : {"Yekan.LICENSE.txt", "DastNevis.LICENSE.txt"})
        EXPECT_GT(std::filesystem::file_size(platform::Bundle::resourcePath(name)), 4000U) << name;
}

TEST(Color, ChannelsCountTo255AndAlphaTo1AndWhatIsBeyondThemStaysDrawable) {
    EXPECT_EQ(colorWithR(255, 255, 255, 1.0), QColor(Qt::white));
    EXPECT_EQ(colorWithR(132, 133, 134, 0.5).rgba(), qRgba(132, 133, 134, 128));
    const auto bright = colorWithR(510, 0, std::numeric_limits<unsigned int>::max(), 1.0);
    ASSERT_TRUE(bright.isValid());
    EXPECT_FLOAT_EQ(bright.redF(), 2.0F);
    EXPECT_EQ(bright.rgba(), qRgba(255, 0, 255, 255));
    for (const auto& [alpha, shown] :
         {std::pair(7.0, 1.0F), {-1.0, 0.0F}, {std::numeric_limits<double>::quiet_NaN(), 0.0F}})
        EXPECT_EQ(colorWithR(1, 2, 3, alpha).alphaF(), shown) << alpha;
}

}  // namespace

}  // namespace velmora::test
