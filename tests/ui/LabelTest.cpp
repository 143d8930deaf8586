#include "ui/Label.h"

#include "ui/Blur.h"
#include "ui/Picture.h"
#include "ui/TextLayout.h"
#include "ui/VLTextAttributes.h"

#include <utility>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

const QString kGreeting = QStringLiteral("سلام دنیا");
const QString kLong = QStringLiteral("برقراری ارتباط با سرویس برای دریافت ویدیو");
constexpr QChar kEllipsis(0x2026);
constexpr QChar kJoiner(0x200D);

VLTextAttributes usual(double size = 24) { return VLTextAttributes::defaultTextAttributesWithFontSize(size); }

QImage label(const QString& text, const VLTextAttributes& attributes, const QSize& size = {200, 60},
             double pixelRatio = 1) {
    Label label;
    label.resize(size);
    label.setText(text, attributes.attributes());
    return drawn(label, pixelRatio);
}

QString shown(const QString& text, LineBreakMode mode, int lines = 1, double height = 1000) {
    auto attributes = usual();
    attributes.setLineBreakMode(mode);
    return TextLayout(text, attributes.attributes(), {100, height}, lines).shownText();
}

TEST(Label, TheAlignmentSaysWhereTheTextLies) {
    const auto bounds = [](const QString& text, TextAlignment alignment, WritingDirection direction) {
        auto attributes = usual();
        attributes.setStyle(ParagraphStyle{alignment, direction, LineBreakMode::byTruncatingTail});
        return inkBounds(label(text, attributes));
    };
    for (const auto direction : {WritingDirection::leftToRight, WritingDirection::rightToLeft}) {
        EXPECT_GT(bounds(kGreeting, TextAlignment::right, direction).right(), 190);
        EXPECT_LT(bounds(kGreeting, TextAlignment::left, direction).left(), 10);
        EXPECT_NEAR(bounds(kGreeting, TextAlignment::center, direction).center().x(), 100, 4);
    }
    using enum WritingDirection;
    EXPECT_GT(bounds("abc", TextAlignment::natural, rightToLeft).left(), 100);
    EXPECT_GT(bounds(kGreeting, TextAlignment::natural, natural).left(), 50);
    EXPECT_LT(bounds("abc", TextAlignment::natural, natural).right(), 100);
    EXPECT_NEAR(bounds(kGreeting, TextAlignment::right, rightToLeft).center().y(), 30, 8);
}

TEST(Label, PersianLettersAreJoined) {
    // Apart, each letter has its own form; joined, the word is narrower than its letters side by side.
    const auto width = [](const QString& text) {
        return TextLayout(text, usual().attributes(), {1000, 100}, 1).size().width();
    };
    EXPECT_LT(width("بببب"), 0.8 * 4 * width("ب"));
}

TEST(Label, ATextWithoutRoomIsCutWhereItsModeSays) {
    const auto tail = shown(kLong, LineBreakMode::byTruncatingTail);
    EXPECT_TRUE(tail.endsWith(kEllipsis));
    // A joiner keeps the form of the last letter, as if the word went on.
    EXPECT_TRUE(kLong.startsWith(QString(tail).remove(kEllipsis).remove(kJoiner)));
    EXPECT_GT(tail.size(), 4);
    EXPECT_TRUE(shown(kLong, LineBreakMode::byTruncatingHead).startsWith(kEllipsis));
    const auto middle = shown(kLong, LineBreakMode::byTruncatingMiddle);
    EXPECT_TRUE(middle.contains(kEllipsis) && !middle.endsWith(kEllipsis) && !middle.startsWith(kEllipsis));
    EXPECT_EQ(shown(kLong, LineBreakMode::byClipping), kLong);
    EXPECT_EQ(shown(kGreeting, LineBreakMode::byTruncatingTail), kGreeting);

    const auto bounds = inkBounds(label(kLong, usual(), {100, 40}));
    EXPECT_GT(bounds.width(), 60) << "most of the room is used";
    EXPECT_TRUE(QRect(0, 0, 100, 40).contains(bounds));
}

TEST(Label, WordsGoToTheNextLineWhereThereIsOne) {
    auto attributes = usual();
    attributes.setLineBreakMode(LineBreakMode::byWordWrapping);
    const auto height = [&](int lines, double room) {
        return TextLayout(kLong, attributes.attributes(), {100, room}, lines).size().height();
    };
    const auto line = height(1, 1000);
    EXPECT_DOUBLE_EQ(height(2, 1000), 2 * line);
    EXPECT_GE(height(0, 1000), 4 * line);
    EXPECT_DOUBLE_EQ(height(0, 3.5 * line), 3 * line);
    EXPECT_DOUBLE_EQ(height(0, 0), line) << "one line at least";

    Label label;
    label.resize(100, 200);
    label.setText(kLong, attributes.attributes());
    const auto oneLine = inkBounds(drawn(label)).height();
    label.setNumberOfLines(0);
    EXPECT_GT(inkBounds(drawn(label)).height(), 2 * oneLine);

    const auto twoLines = shown(kLong, LineBreakMode::byTruncatingTail, 2);
    EXPECT_TRUE(twoLines.endsWith(kEllipsis));
    EXPECT_GT(twoLines.size(), shown(kLong, LineBreakMode::byTruncatingTail).size());
}

TEST(Label, ItTakesTheSizeOfItsText) {
    Label label;
    label.move(7, 9);
    label.setText(kGreeting, usual().attributes());
    label.sizeToFit();
    EXPECT_EQ(label.pos(), QPoint(7, 9));
    EXPECT_EQ(TextLayout(kGreeting, usual().attributes(), label.size(), 1).shownText(), kGreeting);
    const auto oneLine = label.size();

    label.setText(kLong, usual().attributes());
    label.setNumberOfLines(0);
    label.sizeToFit();
    EXPECT_LE(label.width(), oneLine.width());
    EXPECT_GT(label.height(), 2 * oneLine.height());

    label.setText({}, usual().attributes());
    label.setNumberOfLines(1);
    label.sizeToFit();
    EXPECT_EQ(label.width(), 0);
}

TEST(Label, AStrokeWidensWhatIsFilledAndHollowsWhatIsNot) {
    auto attributes = usual(40);
    attributes.setForegroundColor(QColor(Qt::black));
    const auto filled = label(kGreeting, attributes);

    attributes.setStrokeColor(QColor(Qt::red), -10);
    const auto stroked = label(kGreeting, attributes);
    EXPECT_GT(ink(stroked), 1.2 * ink(filled));
    EXPECT_TRUE(inkBounds(stroked).adjusted(1, 1, -1, -1).contains(inkBounds(filled)));

    attributes.setStrokeColor(QColor(Qt::black), 2);
    EXPECT_LT(ink(label(kGreeting, attributes)), 0.9 * ink(filled));
}

TEST(Label, ColoursShadowsAndLinesAreDrawn) {
    const auto has = [](const QImage& image, QColor color) {
        bool isThere = false;
        forEachPixel(image, [&](const QPoint&, const QColor& one) { isThere = isThere || one == color; });
        return isThere;
    };
    auto attributes = usual(30);
    attributes.setForegroundColor(QColor(Qt::green));
    const auto plain = label(kGreeting, attributes);
    EXPECT_TRUE(has(plain, Qt::green));

    auto underlined = attributes;
    underlined.setUnderlineStyle(1);
    const auto line = ink(label(kGreeting, underlined)) - ink(plain);
    EXPECT_GT(line, 20);
    for (const int style : {2, 9}) {
        underlined.setUnderlineStyle(style);
        EXPECT_NEAR(ink(label(kGreeting, underlined)) - ink(plain), 2 * line, line / 2) << style;
    }
    // No letter of this one reaches below the line.
    const auto twice = inkBounds(label("abc", underlined)).bottom();
    underlined.setUnderlineStyle(1);
    EXPECT_GT(twice, inkBounds(label("abc", underlined)).bottom() + 1);

    auto backed = attributes;
    backed.setBackgroundColor(QColor(Qt::yellow));
    const auto onYellow = label(kGreeting, backed);
    EXPECT_TRUE(has(onYellow, Qt::yellow));
    EXPECT_EQ(onYellow.pixelColor(2, 30).alpha(), 0) << "behind the text only";

    auto shadowed = attributes;
    shadowed.setShadow(Shadow{{-20, 6}, 0, Qt::blue});
    const auto hard = label(kGreeting, shadowed);
    EXPECT_TRUE(has(hard, Qt::blue));
    EXPECT_NEAR(inkBounds(hard).left(), inkBounds(plain).left() - 20, 1);
    auto outlined = shadowed;
    outlined.setStrokeColor(QColor(Qt::red), -10);
    const auto beside = label(kGreeting, outlined).copy(0, 0, inkBounds(plain).left() - 10, 60);
    EXPECT_TRUE(has(beside, Qt::blue) && !has(beside, Qt::red)) << "a shadow has one colour";
    shadowed.setShadow(Shadow{{-20, 6}, 4, Qt::blue});
    const auto soft = label(kGreeting, shadowed);
    EXPECT_FALSE(has(soft, Qt::blue));
    EXPECT_GT(ink(soft), 1.3 * ink(plain));
}

TEST(Label, ADenserScreenShowsTheSameText) {
    const auto once = inkBounds(label(kGreeting, usual()));
    const auto thrice = inkBounds(label(kGreeting, usual(), {200, 60}, 3));
    EXPECT_NEAR(thrice.width() / 3.0, once.width(), 2);
    EXPECT_NEAR(thrice.right() / 3.0, once.right(), 2);
}

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
