#pragma once

#include <QImage>
#include <QRect>
#include <QWidget>

namespace velmora::test {

/// What a widget draws, on nothing.
inline QImage drawn(QWidget& widget, double pixelRatio = 1) {
    QImage image(widget.size() * pixelRatio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(pixelRatio);
    image.fill(Qt::transparent);
    widget.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

/// The sum of what covers each pixel, 1 for one that is opaque.
inline double ink(const QImage& image) {
    double sum = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) sum += image.pixelColor(x, y).alphaF();
    return sum;
}

/// The smallest rectangle around what is drawn.
inline QRect inkBounds(const QImage& image) {
    QRect bounds;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y).alpha() > 40) bounds |= QRect(x, y, 1, 1);
    return bounds;
}

}  // namespace velmora::test
