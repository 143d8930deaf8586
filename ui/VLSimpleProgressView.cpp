#include "ui/VLSimpleProgressView.h"

#include "ui/VLRGBAColor.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include <QPainter>
#include <QPainterPath>

namespace velmora {

namespace {

constexpr double kTrackWidth = 5.0;
constexpr double kArcWidth = 4.0;
constexpr float kTrackAlpha = 0.3F;
constexpr double kTurn = 2 * std::numbers::pi;
constexpr double kStart = 4.71238898038469;
/// A little past the start, so that no progress shows as a dot.
constexpr double kEndAtNoProgress = 4.720242962018664;

/// How far an arc runs clockwise between two angles, up to a whole turn.
double sweep(double start, double end) {
    const auto angle = end - start;
    if (angle >= 0) return std::min(angle, kTurn);
    return std::fmod(angle, kTurn) + kTurn;
}

/// The toolkit counts its angles the other way round.
double toolkitDegrees(double clockwise) { return -clockwise * 360 / kTurn; }

}  // namespace

VLSimpleProgressView::VLSimpleProgressView(QWidget* parent) : QWidget(parent) { configureView(); }

VLSimpleProgressView::VLSimpleProgressView(const QRect& frame, QWidget* parent) : QWidget(parent) {
    setGeometry(frame);
    configureView();
}

void VLSimpleProgressView::configureView() {
    setAutoFillBackground(false);
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    progress_ = 0;
}

void VLSimpleProgressView::setProgress(double progress) {
    progress_ = progress;
    picture_.forget();
    update();
}

QColor VLSimpleProgressView::tintColor() const { return tintColor_.value_or(colorWithR(132, 133, 133, 1.0)); }

void VLSimpleProgressView::setTintColor(const std::optional<QColor>& color) {
    tintColor_ = color;
    picture_.forget();
    update();
}

bool VLSimpleProgressView::isSetHidden() const {
    // A widget that was never shown counts as hidden too, until its window is shown.
    return testAttribute(Qt::WA_WState_Hidden) && testAttribute(Qt::WA_WState_ExplicitShowHide);
}

void VLSimpleProgressView::paintEvent(QPaintEvent*) {
    if (!isSetHidden()) picture_.paint(*this, [this](QPainter& painter) { drawRect(painter); });
}

void VLSimpleProgressView::drawRect(QPainter& painter) const {
    const auto radius = width() / 2.0 - kTrackWidth / 2;
    if (radius <= 0) return;
    const QPointF center(width() / 2.0, height() / 2.0);
    const QRectF circle(center.x() - radius, center.y() - radius, 2 * radius, 2 * radius);
    const auto tint = tintColor();
    auto faint = tint;
    faint.setAlphaF(kTrackAlpha);

    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(faint, kTrackWidth, Qt::SolidLine, Qt::FlatCap));
    painter.drawEllipse(circle);

    const auto end = kEndAtNoProgress + kTurn * progress_;
    if (!std::isfinite(end)) return;
    QPainterPath arc;
    arc.arcMoveTo(circle, toolkitDegrees(kStart));
    arc.arcTo(circle, toolkitDegrees(kStart), toolkitDegrees(sweep(kStart, end)));
    painter.strokePath(arc, QPen(tint, kArcWidth, Qt::SolidLine, Qt::RoundCap));
}

}  // namespace velmora
