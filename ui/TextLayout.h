#pragma once

#include "ui/TextAttributeDictionary.h"

#include <QPainterPath>
#include <QPointF>
#include <QSizeF>
#include <QString>
#include <QTextLayout>

class QPainter;

namespace velmora {

/// A text as its attributes have it, broken into lines. In device-independent pixels; main thread only.
///
/// Each letter is shaped by the toolkit, right-to-left text and text of both directions included.
class TextLayout {
public:
    /// The text gets `room`, and at least one line; `numberOfLines` 0 means as many as fit. Where the
    /// paragraph style truncates, an ellipsis stands for what found no room.
    TextLayout(const QString& text, const TextAttributeDictionary& attributes, QSizeF room,
               int numberOfLines);

    /// What the lines take, without shadow and stroke.
    [[nodiscard]] QSizeF size() const;

    /// The text as it is shown.
    [[nodiscard]] QString shownText() const { return layout_.text(); }

    /// Draws it with the upper left corner of its room at `origin`.
    void draw(QPainter& painter, const QPointF& origin) const;

private:
    /// One colour for everything instead of the attributes' own.
    using Override = std::optional<QColor>;

    [[nodiscard]] int linesWithin(qreal height) const;
    void breakIntoLines(const QString& text, int limit, bool lastIsCut);
    /// The text with an ellipsis in its last line; none when it has room as it is.
    [[nodiscard]] std::optional<QString> truncated(const QString& text) const;
    void align();

    void drawBackground(QPainter& painter, const QPointF& origin) const;
    void drawShadow(QPainter& painter, const QPointF& origin) const;
    void drawInk(QPainter& painter, const QPointF& origin, const Override& color) const;
    void drawUnderline(QPainter& painter, const QPointF& origin, const QColor& color) const;
    [[nodiscard]] QPainterPath outlines() const;
    [[nodiscard]] qreal strokeWidth() const;

    TextAttributeDictionary attributes_;
    ParagraphStyle style_;
    QFont font_;
    qreal width_;
    QTextLayout layout_;
};

}  // namespace velmora
