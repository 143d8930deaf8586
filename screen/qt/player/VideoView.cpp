#include "screen/qt/player/VideoView.h"

#include "screen/qt/player/VideoPicture.h"

#include <utility>

#include <QPainter>
#include <QRegion>
#include <QtMath>

namespace velmora::screen {

namespace {

QRect whollyIn(const QRectF& area) {
    return {QPoint(qCeil(area.left()), qCeil(area.top())),
            QPoint(qFloor(area.right()) - 1, qFloor(area.bottom()) - 1)};
}

}  // namespace

VideoView::VideoView(QWidget* parent) : QWidget(parent) { setAttribute(Qt::WA_TransparentForMouseEvents); }

void VideoView::setFrame(const QVideoFrame& frame) {
    if (!frame.isValid()) return;
    frame_ = frame;
    // What lies beneath need not be drawn for each frame.
    setAttribute(Qt::WA_OpaquePaintEvent);
    update();
}

void VideoView::paintEvent(QPaintEvent* /*event*/) {
    if (frame_.isValid()) drawFrame(std::exchange(frame_, QVideoFrame()), picture_);
    if (picture_.isNull()) return;
    QPainter painter(this);
    const QSizeF fitted = QSizeF(picture_.size()).scaled(size(), Qt::KeepAspectRatio);
    QRectF target(QPointF(), fitted);
    target.moveCenter(QRectF(rect()).center());
    for (const QRect& bar : QRegion(rect()) - whollyIn(target)) painter.fillRect(bar, Qt::black);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(target, picture_);
}

}  // namespace velmora::screen
