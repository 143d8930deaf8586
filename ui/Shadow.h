#pragma once

#include <QColor>
#include <QPointF>

namespace velmora {

/// A shadow of a text, in device-independent pixels; the offset points right and down.
struct Shadow {
    QPointF offset{0, -1};
    double blurRadius = 0;
    QColor color{0, 0, 0, 85};

    friend bool operator==(const Shadow&, const Shadow&) = default;
};

}  // namespace velmora
