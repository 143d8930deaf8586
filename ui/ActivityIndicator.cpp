#include "ui/ActivityIndicator.h"

#include <algorithm>

#include <QPainter>
#include <QTimerEvent>

namespace velmora {

namespace {

/// Even, so that its centre can lie where that of an even panel lies.
constexpr int kSize = 36;
constexpr int kSpokes = 12;
constexpr int kTurnMilliseconds = 1000;

}  // namespace

ActivityIndicator::ActivityIndicator(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    resize(kSize, kSize);
    hide();
}

void ActivityIndicator::startAnimating() {
    animating_ = true;
    show();
    if (isVisible()) turn();
}

void ActivityIndicator::stopAnimating() {
    animating_ = false;
    hide();
}

void ActivityIndicator::showEvent(QShowEvent*) {
    if (animating_) turn();
}

void ActivityIndicator::turn() {
    if (!timer_.isActive()) timer_.start(kTurnMilliseconds / kSpokes, this);
}

void ActivityIndicator::hideEvent(QHideEvent*) { timer_.stop(); }

void ActivityIndicator::timerEvent(QTimerEvent* event) {
    if (event->timerId() != timer_.timerId()) return QWidget::timerEvent(event);
    step_ = (step_ + 1) % kSpokes;
    update();
}

void ActivityIndicator::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(width() / 2.0, height() / 2.0);
    const auto radius = std::min(width(), height()) / 2.0 - 2;
    painter.rotate(360.0 * step_ / kSpokes);
    for (int i = 0; i < kSpokes; ++i) {
        // The spoke at the front is white, and those behind it fade.
        const auto alpha = 1.0F - 0.85F * static_cast<float>(kSpokes - 1 - i) / (kSpokes - 1);
        painter.rotate(360.0 / kSpokes);
        painter.setPen(QPen(QColor::fromRgbF(1, 1, 1, alpha), radius * 0.18, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(0, -radius), QPointF(0, -radius * 0.55));
    }
}

}  // namespace velmora
