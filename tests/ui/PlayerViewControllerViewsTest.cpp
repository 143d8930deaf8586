#include "ui/PlayerScreen.h"

#include "support/LogCapture.h"
#include "ui/Label.h"
#include "ui/VLActivityIndicatorView.h"
#include "ui/VLSimpleProgressView.h"
#include "ui/VLTextAttributes.h"

#include <cmath>
#include <functional>
#include <vector>

#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using platform::PlayerStatus;
using testing::ElementsAre;

TEST_F(PlayerController, ANewOneHasItsPicturesAndHidesTheSkipButton) {
    auto& controller = make();
    EXPECT_FALSE(controller.isViewLoaded());
    EXPECT_TRUE(controller.isSkipButtonVisible()) << "it answers whether it is hidden";
    EXPECT_TRUE(controller.isViewLoaded());
    EXPECT_EQ(controller.skipButton()->parentWidget(), controller.view());
    EXPECT_EQ(controller.skipButton()->imageFile().filename(), "Skip.png");
    EXPECT_EQ(controller.exitButton()->imageFile().filename(), "Close.png");
    EXPECT_TRUE(controller.muteButton()->imageFile().empty());
    controller.setSkipButtonVisible(true);
    EXPECT_FALSE(controller.isSkipButtonVisible());
    touch(controller.skipButton());
    EXPECT_THAT(told_->calls, ElementsAre("skipped")) << "wired by the access that loaded the view";
}

TEST_F(PlayerController, TheViewsLieInTheCornersOfTheScreenAndOverTheVideo) {
    auto& controller = present();
    const auto screen = VLAVPlayerViewController::screenSize();
    const QRect whole(0, 0, static_cast<int>(screen.width), static_cast<int>(screen.height));
    const int right = whole.width() - 52;
    const int bottom = whole.height() - 52;
    EXPECT_EQ(controller.exitButton()->geometry(), QRect(8, 8, 44, 44));
    EXPECT_EQ(controller.muteButton()->geometry(), QRect(right, 8, 44, 44));
    EXPECT_EQ(controller.progressView()->geometry(), QRect(8, bottom, 44, 44));
    EXPECT_EQ(controller.progressLabel()->geometry(), QRect(8, bottom, 44, 44));
    EXPECT_EQ(controller.skipButton()->geometry(), QRect(right, bottom, 44, 44));
    EXPECT_EQ(controller.spinner()->geometry(),
              QRect(whole.width() / 2 - 50, whole.height() / 2 - 50, 100, 100));
    EXPECT_EQ(controller.avPlayerLayer->geometry(), whole);

    // From the back to the front.
    std::vector<QObject*> expected{controller.spinner(),       controller.avPlayerLayer,
                                   controller.exitButton(),    controller.progressView(),
                                   controller.progressLabel(), controller.muteButton(),
                                   controller.skipButton()};
    std::vector<QObject*> found;
    for (auto* child : controller.view()->children())
        if (child->isWidgetType()) found.push_back(child);
    EXPECT_EQ(found, expected);
}

TEST_F(PlayerController, ARewardedVideoHidesTheSkipButtonAtEveryLayout) {
    auto& controller = makeWithUrl(VLCreativeType::rewardedVideo);
    controller.setSkipButtonVisible(true);
    EXPECT_FALSE(controller.isSkipButtonVisible()) << "until the next layout";
    controller.viewDidLayoutSubviews();
    EXPECT_TRUE(controller.isSkipButtonVisible());
}

TEST_F(PlayerController, TheExitButtonIsHiddenAtEveryLayoutWhenGoingBackIsDisabled) {
    options_->setBackDisabled(true);
    auto& controller = load();
    EXPECT_FALSE(controller.exitButton()->isHidden());
    LogCapture log;
    controller.viewDidLayoutSubviews();
    EXPECT_THAT(log.lines(), ElementsAre("back disabled? 1"));
    EXPECT_TRUE(controller.exitButton()->isHidden());
    controller.exitButton()->show();
    controller.viewDidLayoutSubviews();
    EXPECT_TRUE(controller.exitButton()->isHidden());
    controller.adShowOptions.reset();
    controller.exitButton()->show();
    controller.viewDidLayoutSubviews();
    EXPECT_FALSE(controller.exitButton()->isHidden());
    EXPECT_EQ(log.lines().size(), 2U);
}

TEST_F(PlayerController, ATickIsToldBeforeItIsShownAndKeepsTheFirstDuration) {
    auto& controller = load();
    player().length = 8;
    std::vector<double> shown;
    told_->onCall = [&](const std::string&) { shown.push_back(controller.progressView()->progress()); };
    player().tick(0);
    EXPECT_EQ(controller.progressLabel()->text(), "0%");
    EXPECT_EQ(platform::asDouble(controller.getVideoDuration()), 8);
    player().pass(3.99);
    player().length = 16;
    player().tick(15.9999);
    EXPECT_EQ(controller.progressLabel()->text(), "99%");
    player().tick(20);
    EXPECT_EQ(controller.progressLabel()->text(), "125%");
    EXPECT_THAT(told_->calls, ElementsAre("progress 0 at 0", "progress 0.46875 at 3.75",
                                          "progress 0.999994 at 15.9999", "progress 1.25 at 20"));
    EXPECT_THAT(shown, ElementsAre(0, 0, 0.46875, static_cast<double>(15.9999F / 16)));
    EXPECT_EQ(platform::asDouble(controller.getVideoDuration()), 8);
    EXPECT_EQ(controller.progressLabel()->attributes().foregroundColor, QColor(132, 133, 133));
    EXPECT_EQ(controller.progressLabel()->attributes().paragraphStyle->alignment, TextAlignment::center);
}

TEST_F(PlayerController, AnUnknownDurationIsToldAsItIsAndShownAsNothing) {
    auto& controller = load();
    player().tick(1);
    EXPECT_TRUE(std::isnan(platform::asDouble(controller.getVideoDuration())));
    EXPECT_EQ(controller.progressLabel()->text(), "0%");
    EXPECT_THAT(told_->calls, ElementsAre(testing::MatchesRegex("progress -?nan at 1")));
    player().length = 0;
    player().tick(1);
    EXPECT_EQ(controller.progressLabel()->text(), "9223372036854775807%");
}

TEST_F(PlayerController, TheMuteButtonMutesAndUnmutes) {
    auto& controller = present();
    EXPECT_EQ(controller.muteButton()->imageFile().filename(), "SoundOn.png");
    touch(controller.muteButton());
    EXPECT_EQ(controller.muteButton()->imageFile().filename(), "SoundOff.png");
    EXPECT_TRUE(player().isMuted());
    touch(controller.muteButton());
    EXPECT_EQ(controller.muteButton()->imageFile().filename(), "SoundOn.png");
    EXPECT_FALSE(player().isMuted());
    EXPECT_THAT(told_->calls, ElementsAre("muted", "unmuted"));
    QTest::mousePress(controller.muteButton(), Qt::LeftButton);
    QTest::mouseRelease(controller.muteButton(), Qt::LeftButton, {}, QPoint(-20, 10));
    EXPECT_EQ(told_->calls.size(), 2U) << "a touch that ends elsewhere is none";
}

TEST_F(PlayerController, WhatChangesIsOnTheScreenWithoutBeingAskedForIt) {
    auto& controller = present();
    become(PlayerStatus::readyToPlay);
    const auto onScreen = [&](const QWidget* view) {
        settle();
        const QRect place = view->geometry();
        const auto window = controller.view()->window()->winId();
        return controller.view()
            ->screen()
            ->grabWindow(window, place.x(), place.y(), place.width(), place.height())
            .toImage();
    };
    const struct {
        const char* what;
        QWidget* view;
        std::function<void()> change;
    } kChanges[] = {
        {"ring", controller.progressView(), [&] { controller.progressView()->setProgress(0.5); }},
        {"colour", controller.progressView(), [&] { controller.progressView()->setTintColor(Qt::red); }},
        {"label", controller.progressLabel(),
         [&] {
             controller.progressLabel()->setText(
                 "50 of 100 seconds", VLTextAttributes::defaultTextAttributesWithFontSize(8).attributes());
         }},
        {"lines", controller.progressLabel(), [&] { controller.progressLabel()->setNumberOfLines(0); }},
        {"mute button", controller.muteButton(), [&] { touch(controller.muteButton()); }},
        {"skip button", controller.skipButton(), [&] { controller.setSkipButtonVisible(true); }},
        {"exit button", controller.exitButton(), [&] { controller.exitButton()->hide(); }},
        {"spinner", controller.spinner(), [&] { controller.spinner()->startAnimating(); }},
        {"turn", controller.spinner(),
         [&, spinner = controller.spinner()] {
             const auto first = onScreen(spinner);
             EXPECT_TRUE(runUntil([&] { return onScreen(spinner) != first; }, std::chrono::seconds(10)));
         }},
    };
    for (const auto& [what, view, change] : kChanges) {
        const auto before = onScreen(view);
        ASSERT_FALSE(before.isNull());
        change();
        EXPECT_NE(onScreen(view), before) << what;
    }
}

}  // namespace

}  // namespace velmora::test
