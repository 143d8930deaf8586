#pragma once

#include <cmath>

#include <QPointF>
#include <QWidget>

namespace velmora {

/// Moves a widget so that its centre lies there, to the whole pixel at or above and left of it.
inline void setCenter(QWidget& widget, const QPointF& center) {
    widget.move(static_cast<int>(std::floor(center.x() - widget.width() / 2.0)),
                static_cast<int>(std::floor(center.y() - widget.height() / 2.0)));
}

}  // namespace velmora
