#include "ui/TextLayout.h"

#include "ui/Blur.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <QFontMetricsF>
#include <QGlyphRun>
#include <QImage>
#include <QPainter>
#include <QRawFont>

namespace velmora {

namespace {

constexpr int kSizeWithoutFont = 17;
/// As wide as any line, and within what the toolkit's fixed-point numbers hold.
constexpr qreal kUnbounded = 1e6;

QFont fontWithoutAttribute() {
    QFont font;
    font.setPixelSize(kSizeWithoutFont);
    return font;
}

Qt::LayoutDirection direction(WritingDirection direction) {
    switch (direction) {
    case WritingDirection::leftToRight: return Qt::LeftToRight;
    case WritingDirection::rightToLeft: return Qt::RightToLeft;
    case WritingDirection::natural: break;
    }
    return Qt::LayoutDirectionAuto;
}

/// ElideNone for a mode that does not truncate.
Qt::TextElideMode elision(LineBreakMode mode) {
    switch (mode) {
    case LineBreakMode::byTruncatingHead: return Qt::ElideLeft;
    case LineBreakMode::byTruncatingTail: return Qt::ElideRight;
    case LineBreakMode::byTruncatingMiddle: return Qt::ElideMiddle;
    default: return Qt::ElideNone;
    }
}

QTextOption::WrapMode wrapping(LineBreakMode mode, int limit) {
    if (mode == LineBreakMode::byWordWrapping) return QTextOption::WrapAtWordBoundaryOrAnywhere;
    if (mode == LineBreakMode::byCharWrapping) return QTextOption::WrapAnywhere;
    return limit == 1 ? QTextOption::NoWrap : QTextOption::WrapAtWordBoundaryOrAnywhere;
}

}  // namespace

TextLayout::TextLayout(const QString& text, const TextAttributeDictionary& attributes, QSizeF room,
                       int numberOfLines)
    : attributes_(attributes),
      style_(attributes.paragraphStyle.value_or(ParagraphStyle{})),
      font_(attributes.font.value_or(fontWithoutAttribute())),
      width_(std::min(room.width(), kUnbounded)) {
    auto whole = text;
    whole.replace(QLatin1Char('\n'), QChar::LineSeparator);
    int limit = numberOfLines > 0 ? numberOfLines : std::numeric_limits<int>::max();
    breakIntoLines(whole, limit, false);
    // Lines differ in height where fonts stand in for each other, so that only these lines tell how many fit.
    if (const int fitting = linesWithin(room.height()); fitting < layout_.lineCount()) {
        limit = fitting;
        breakIntoLines(whole, limit, false);
    }
    if (const auto cut = truncated(whole)) breakIntoLines(*cut, limit, true);
    align();
}

int TextLayout::linesWithin(qreal height) const {
    int count = std::min(1, layout_.lineCount());
    for (; count < layout_.lineCount(); ++count) {
        const auto next = layout_.lineAt(count);
        if (next.y() + next.height() > height) break;
    }
    return count;
}

void TextLayout::breakIntoLines(const QString& text, int limit, bool lastIsCut) {
    // The lines are moved to their places by `align`, as only it knows what a line without bounds lies in.
    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setTextDirection(direction(style_.baseWritingDirection));
    option.setWrapMode(wrapping(style_.lineBreakMode, limit));
    layout_.setFont(font_);
    layout_.setTextOption(option);
    layout_.setText(text);
    layout_.beginLayout();
    qreal y = 0;
    for (int count = 1; count <= limit; ++count) {
        auto line = layout_.createLine();
        if (!line.isValid()) break;
        // The text was cut to the width by sums that round otherwise than those of a layout.
        line.setLineWidth(lastIsCut && count == limit ? kUnbounded : width_);
        line.setPosition({0, y});
        y += line.height();
    }
    layout_.endLayout();
}

std::optional<QString> TextLayout::truncated(const QString& text) const {
    const auto mode = elision(style_.lineBreakMode);
    if (mode == Qt::ElideNone || layout_.lineCount() == 0) return std::nullopt;
    const auto last = layout_.lineAt(layout_.lineCount() - 1);
    if (last.textStart() + last.textLength() >= text.size() && last.naturalTextWidth() <= width_)
        return std::nullopt;
    auto rest = text.mid(last.textStart());
    rest.replace(QChar::LineSeparator, QLatin1Char(' '));
    return text.left(last.textStart()) + QFontMetricsF(font_).elidedText(rest, mode, width_);
}

void TextLayout::align() {
    auto alignment = style_.alignment;
    if (alignment == TextAlignment::natural || alignment == TextAlignment::justified) {
        const bool natural = style_.baseWritingDirection == WritingDirection::natural;
        const bool toTheLeft = natural ? layout_.text().isRightToLeft()
                                       : style_.baseWritingDirection == WritingDirection::rightToLeft;
        alignment = toTheLeft ? TextAlignment::right : TextAlignment::left;
    }
    for (int i = 0; i < layout_.lineCount(); ++i) {
        auto line = layout_.lineAt(i);
        const auto free = width_ - line.naturalTextWidth();
        if (alignment == TextAlignment::right) line.setPosition({free, line.y()});
        if (alignment == TextAlignment::center) line.setPosition({free / 2, line.y()});
    }
}

QSizeF TextLayout::size() const {
    QSizeF size(0, 0);
    for (int i = 0; i < layout_.lineCount(); ++i) {
        const auto line = layout_.lineAt(i);
        size = {std::max(size.width(), line.naturalTextWidth()), line.y() + line.height()};
    }
    return size;
}

void TextLayout::draw(QPainter& painter, const QPointF& origin) const {
    painter.save();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    drawBackground(painter, origin);
    drawShadow(painter, origin);
    drawInk(painter, origin, std::nullopt);
    painter.restore();
}

void TextLayout::drawBackground(QPainter& painter, const QPointF& origin) const {
    if (!attributes_.backgroundColor) return;
    for (int i = 0; i < layout_.lineCount(); ++i)
        painter.fillRect(layout_.lineAt(i).naturalTextRect().translated(origin),
                         *attributes_.backgroundColor);
}

void TextLayout::drawShadow(QPainter& painter, const QPointF& origin) const {
    const auto& shadow = attributes_.shadow;
    if (!shadow) return;
    if (!(shadow->blurRadius > 0)) return drawInk(painter, origin + shadow->offset, shadow->color);

    const auto ratio = painter.device()->devicePixelRatioF();
    const auto margin = std::ceil(2 * shadow->blurRadius + strokeWidth());
    const QSizeF extent(width_ + 2 * margin, size().height() + 2 * margin);
    QImage picture((extent * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    if (picture.isNull()) return;
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    {
        QPainter ink(&picture);
        ink.setRenderHints(painter.renderHints());
        drawInk(ink, {margin, margin}, shadow->color);
    }
    blur(picture, shadow->blurRadius * ratio);
    painter.drawImage(origin + shadow->offset - QPointF(margin, margin), picture);
}

void TextLayout::drawInk(QPainter& painter, const QPointF& origin, const Override& color) const {
    const auto foreground = color.value_or(attributes_.foregroundColor.value_or(QColor(Qt::black)));
    const auto stroke = attributes_.strokeWidth.value_or(0);
    if (!(stroke > 0)) {
        painter.setPen(foreground);
        layout_.draw(&painter, origin);
    }
    if (strokeWidth() > 0) {
        const auto own = attributes_.strokeColor.value_or(foreground);
        painter.strokePath(outlines().translated(origin), QPen(color.value_or(own), strokeWidth(),
                                                               Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    }
    drawUnderline(painter, origin, foreground);
}

void TextLayout::drawUnderline(QPainter& painter, const QPointF& origin, const QColor& color) const {
    constexpr int kThick = 2;
    constexpr int kDouble = 9;
    const int style = attributes_.underlineStyle.value_or(0);
    if (style == 0) return;
    const QFontMetricsF metrics(font_);
    const auto height = std::max(metrics.lineWidth(), 1.0) * (style == kThick ? 2 : 1);
    for (int i = 0; i < layout_.lineCount(); ++i) {
        const auto line = layout_.lineAt(i);
        QRectF rule(line.x(), line.y() + line.ascent() + metrics.underlinePos(), line.naturalTextWidth(),
                    height);
        rule.translate(origin);
        painter.fillRect(rule, color);
        if (style == kDouble) painter.fillRect(rule.translated(0, 2 * height), color);
    }
}

QPainterPath TextLayout::outlines() const {
    QPainterPath path;
    for (const auto& run : layout_.glyphRuns()) {
        const auto font = run.rawFont();
        const auto glyphs = run.glyphIndexes();
        const auto positions = run.positions();
        for (qsizetype i = 0; i < glyphs.size(); ++i)
            path.addPath(font.pathForGlyph(glyphs[i]).translated(positions[i]));
    }
    return path;
}

qreal TextLayout::strokeWidth() const {
    const auto hundredths = std::abs(attributes_.strokeWidth.value_or(0));
    return std::isfinite(hundredths) ? static_cast<qreal>(hundredths) * font_.pixelSize() / 100 : 0;
}

}  // namespace velmora
