#pragma once

#include <QPainter>
#include <QPixmap>
#include <QWidget>

namespace velmora {

/// What a widget shows over a video, which is painted with every frame, but drawn anew only when it changes.
class KeptPicture {
public:
    void forget() { picture_ = QPixmap(); }

    /// `draw` gets a painter in the coordinates of the widget.
    template <class Draw>
    void paint(QWidget& widget, const Draw& draw) {
        QPainter onWidget(&widget);
        // Of whatever the widget is painted on, which need not be the screen.
        const auto ratio = onWidget.deviceTransform().m11();
        const auto size = (QSizeF(widget.size()) * ratio).toSize();
        if (picture_.size() != size) {
            picture_ = QPixmap(size);
            picture_.setDevicePixelRatio(ratio);
            picture_.fill(Qt::transparent);
            QPainter painter(&picture_);
            draw(painter);
        }
        onWidget.drawPixmap(QPointF(), picture_);
    }

private:
    QPixmap picture_;
};

}  // namespace velmora
