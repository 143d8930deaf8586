#include "ui/VLActivityIndicatorView.h"

#include "ui/Placement.h"
#include "ui/VLTextAttributes.h"

#include <QPainter>

namespace velmora {

namespace {

constexpr char16_t kCaption[] = u"برقراری ارتباط...";
constexpr double kFontSize = 12.0;
constexpr float kAlpha = 0.9F;
constexpr double kCornerRadius = 10.0;
constexpr double kMargin = 10.0;

}  // namespace

VLActivityIndicatorView::VLActivityIndicatorView(const QRect& frame, QWidget* parent) : QWidget(parent) {
    setGeometry(frame);
    setup();
}

ActivityIndicator* VLActivityIndicatorView::spinner() {
    if (spinner_ == nullptr) {
        // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): its parent owns it
        spinner_ = new ActivityIndicator(this);
        setCenter(*spinner_, QRectF(rect()).center());
        spinner_->raise();
    }
    return spinner_;
}

Label* VLActivityIndicatorView::textLabel() {
    if (textLabel_ == nullptr) {
        // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): its parent owns it
        textLabel_ = new Label(this);
        setCenter(*textLabel_, QRectF(rect()).center());
        textLabel_->show();
        textLabel_->raise();
    }
    return textLabel_;
}

void VLActivityIndicatorView::setup() {
    auto attributes = VLTextAttributes::defaultTextAttributesWithFontSize(kFontSize);
    attributes.setForegroundColor(QColor(Qt::white));
    textLabel()->setText(QString::fromUtf16(kCaption), attributes.attributes());
    textLabel()->sizeToFit();
    hide();
}

void VLActivityIndicatorView::startAnimating() {
    show();
    spinner()->startAnimating();
    layoutSubviews();
}

void VLActivityIndicatorView::stopAnimating() {
    hide();
    spinner()->stopAnimating();
}

void VLActivityIndicatorView::layoutSubviews() {
    setCenter(*spinner(), {width() / 2.0, height() / 2.0 - kMargin});
    setCenter(*textLabel(), {width() / 2.0, height() - textLabel()->height() / 2.0 - kMargin});
}

void VLActivityIndicatorView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    layoutSubviews();
}

void VLActivityIndicatorView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgbF(0, 0, 0, kAlpha));
    painter.drawRoundedRect(rect(), kCornerRadius, kCornerRadius);
}

}  // namespace velmora
