#include "platform/Bundle.h"
#include "platform/Log.h"
#include "ui/ImageButton.h"
#include "ui/Label.h"
#include "ui/Placement.h"
#include "ui/VLAVPlayerViewController.h"
#include "ui/VLActivityIndicatorView.h"
#include "ui/VLRGBAColor.h"
#include "ui/VLSimpleProgressView.h"
#include "ui/VLTextAttributes.h"
#include <velmora/VLAdShowOptions.h>

#include <cmath>

#include <QPalette>

namespace velmora {

using platform::Bundle;

namespace {

constexpr int kMargin = 8;
constexpr int kSide = 44;

}  // namespace

template <class View>
View* VLAVPlayerViewController::subview(QPointer<View>& view, const QRect& frame) {
    if constexpr (std::is_same_v<View, Label>) {
        // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): its parent owns it
        view = new Label();
        view->setGeometry(frame);
    } else {
        // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): its parent owns it
        view = new View(frame);
    }
    // Before the view is asked for: when that loads it, this one is wired already.
    View* const made = view;
    made->setParent(this->view());
    return made;
}

ImageButton* VLAVPlayerViewController::exitButton() {
    if (exitButton_) return exitButton_;
    auto* button = subview(exitButton_, QRect(0, 0, 32, 32));
    button->setObjectName("exitButton");
    button->setImage(Bundle::resourcePath("Close.png"));
    button->show();
    return button;
}

ImageButton* VLAVPlayerViewController::muteButton() {
    if (muteButton_) return muteButton_;
    auto* button = subview(muteButton_, QRect(0, 0, kSide, kSide));
    button->setObjectName("muteButton");
    button->show();
    return button;
}

ImageButton* VLAVPlayerViewController::skipButton() {
    if (skipButton_) return skipButton_;
    auto* button = subview(skipButton_, QRect(0, 0, kSide, kSide));
    button->setObjectName("skipButton");
    button->setImage(Bundle::resourcePath("Skip.png"));
    button->hide();
    return button;
}

VLSimpleProgressView* VLAVPlayerViewController::progressView() {
    if (progressView_) return progressView_;
    auto* ring = subview(progressView_, QRect(0, 0, kSide, kSide));
    ring->setProgress(0.0);
    ring->show();
    return ring;
}

Label* VLAVPlayerViewController::progressLabel() {
    if (progressLabel_) return progressLabel_;
    auto* label = subview(progressLabel_, QRect(0, 0, kSide, kSide));
    label->show();
    return label;
}

VLActivityIndicatorView* VLAVPlayerViewController::spinner() {
    if (spinner_) return spinner_;
    auto* panel = subview(spinner_, QRect(0, 0, 100, 100));
    setCenter(*panel, QRectF(view()->rect()).center());
    panel->raise();
    return panel;
}

void VLAVPlayerViewController::makeLayer() {
    // What the video leaves free of the screen is black, from the beginning on.
    QPalette palette = view()->palette();
    palette.setColor(QPalette::Window, Qt::black);
    view()->setPalette(palette);
    view()->setAutoFillBackground(true);
    avPlayerLayer = player->makeLayer(view());
    avPlayerLayer->setGeometry(view()->rect());
    avPlayerLayer->show();
}

void VLAVPlayerViewController::makeLabelAttributes() {
    auto attributes = VLTextAttributes::defaultTextAttributesWithFontSize(14.0);
    attributes.setForegroundColor(progressView()->tintColor());
    attributes.setAlignment(TextAlignment::center);
    labelAttributes_ = attributes.attributes();
}

platform::ScreenSize VLAVPlayerViewController::screenSize() {
    // The platform gives it as the interface is turned; nothing is to be swapped.
    return platform::Screen::main().size;
}

void VLAVPlayerViewController::viewDidLayoutSubviews() {
    layOutViews(screenSize());
    if (adShowOptions && adShowOptions->getBackDisabled()) {
        platform::log("back disabled? 1");
        exitButton()->hide();
    } else {
        exitButton()->raise();
    }
    if (creativeType == VLCreativeType::rewardedVideo) skipButton()->hide();
    progressView()->raise();
    progressLabel()->raise();
    muteButton()->raise();
    skipButton()->raise();
}

void VLAVPlayerViewController::layOutViews(const platform::ScreenSize& screen) {
    const int width = static_cast<int>(std::lround(screen.width));
    const int height = static_cast<int>(std::lround(screen.height));
    const int right = width - kSide - kMargin;
    const int bottom = height - kSide - kMargin;
    exitButton()->setGeometry(kMargin, kMargin, kSide, kSide);
    progressView()->setGeometry(kMargin, bottom, kSide, kSide);
    setCenter(*progressLabel(), QRectF(progressView()->geometry()).center());
    setCenter(*spinner(), QPointF(screen.width / 2, screen.height / 2));
    if (avPlayerLayer) avPlayerLayer->setGeometry(0, 0, width, height);
    muteButton()->setGeometry(right, kMargin, kSide, kSide);
    skipButton()->setGeometry(right, bottom, kSide, kSide);
}

void VLAVPlayerViewController::showMuted(bool muted) {
    muteButton()->setImage(Bundle::resourcePath(muted ? "SoundOff.png" : "SoundOn.png"));
}

void VLAVPlayerViewController::setSkipButtonVisible(bool visible) { skipButton()->setHidden(!visible); }

bool VLAVPlayerViewController::isSkipButtonVisible() { return skipButton()->isHidden(); }

}  // namespace velmora
