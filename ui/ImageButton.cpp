#include "ui/ImageButton.h"

#include <QPainter>

namespace velmora {

ImageButton::ImageButton(const QRect& frame, QWidget* parent) : QAbstractButton(parent) {
    setGeometry(frame);
    setFocusPolicy(Qt::NoFocus);
}

void ImageButton::setImage(const std::filesystem::path& file) {
    file_ = file;
    image_ = QImage(QString::fromStdString(file.string()));
    fitted_ = QPixmap();
    update();
}

QPixmap ImageButton::fitted() const {
    const auto size = (QSizeF(this->size()) * devicePixelRatioF()).toSize();
    auto pixmap = QPixmap::fromImage(image_.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    pixmap.setDevicePixelRatio(devicePixelRatioF());
    return pixmap;
}

void ImageButton::paintEvent(QPaintEvent* /*event*/) {
    if (image_.isNull()) return;
    const auto size = (QSizeF(this->size()) * devicePixelRatioF()).toSize();
    // The button lies over a video and is painted with every frame of it.
    if (fitted_.size() != image_.size().scaled(size, Qt::KeepAspectRatio)) fitted_ = fitted();
    QRectF target(QPointF(), fitted_.deviceIndependentSize());
    target.moveCenter(QRectF(rect()).center());
    QPainter painter(this);
    if (isDown()) painter.setOpacity(0.5);
    painter.drawPixmap(target.topLeft(), fitted_);
}

}  // namespace velmora
