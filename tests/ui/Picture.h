#pragma once

#include <functional>

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

inline void forEachPixel(const QImage& image,
                         const std::function<void(const QPoint&, const QColor&)>& visit) {
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) visit({x, y}, image.pixelColor(x, y));
}

/// The sum of what covers each pixel, 1 for one that is opaque.
inline double ink(const QImage& image) {
    double sum = 0;
    forEachPixel(image, [&](const QPoint&, const QColor& color) { sum += color.alphaF(); });
    return sum;
}

/// The smallest rectangle around what is drawn.
inline QRect inkBounds(const QImage& image) {
    QRect bounds;
    forEachPixel(image, [&](const QPoint& place, const QColor& color) {
        if (color.alpha() > 40) bounds |= QRect(place, QSize(1, 1));
    });
    return bounds;
}

}  // namespace velmora::test
