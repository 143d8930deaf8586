#include "ui/VLAVPlayerViewController.h"

#include "harness/EventLoop.h"
#include "screen/Application.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/ScriptedPlayer.h"
#include "ui/ImageButton.h"
#include "ui/Label.h"
#include "ui/Told.h"
#include "ui/VLActivityIndicatorView.h"
#include "ui/VLSimpleProgressView.h"
#include "ui/VLTextAttributes.h"
#include <velmora/VLAdShowOptions.h>

#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QTest>
#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using screen::PlayerStatus;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kUrl = "https://media.example/ad.mp4";

/// The player's screen over a window of the application, with a scripted player and a clock of its own.
class PlayerController : public testing::Test {
protected:
    PlayerController() {
        window_.resize(300, 200);
        window_.show();
    }

    ~PlayerController() override {
        if (controller_) controller_->player.reset();
        controller_.reset();
        for (auto* window : QApplication::topLevelWidgets())
            if (window != &window_) window->close();
        settle();
    }

    VLAVPlayerViewController& make(VLCreativeType type = VLCreativeType::video) {
        controller_ = std::make_shared<VLAVPlayerViewController>(options_, type);
        controller_->delegate = told_;
        return *controller_;
    }

    VLAVPlayerViewController& makeWithUrl(VLCreativeType type = VLCreativeType::video) {
        make(type).setUrlString(kUrl);
        return *controller_;
    }

    /// With its view loaded, on no screen.
    VLAVPlayerViewController& load() {
        static_cast<void>(makeWithUrl().view());
        return *controller_;
    }

    VLAVPlayerViewController& present() {
        makeWithUrl();
        presentAgain();
        return *controller_;
    }

    void presentAgain() {
        root()->presentViewController(controller_, true);
        letAnimationsEnd();
    }

    void letAnimationsEnd() {
        for (int step = 0; step < 8; ++step) {
            settle();
            clock_->advance(std::chrono::milliseconds(100));
        }
        settle();
    }

    static std::shared_ptr<screen::ViewController> root() {
        return screen::Application::rootViewController();
    }

    [[nodiscard]] ScriptedPlayer& player() const { return *players_.last(); }

    void become(PlayerStatus status) {
        player().become(status);
        settle();
    }

    static void touch(ImageButton* button) { QTest::mouseClick(button, Qt::LeftButton); }

    UseManualClock clock_;
    UseScriptedPlayers players_;
    std::shared_ptr<VLAdShowOptions> options_ = std::make_shared<VLAdShowOptions>();
    std::shared_ptr<Told> told_ = std::make_shared<Told>();
    std::shared_ptr<VLAVPlayerViewController> controller_;
    QWidget window_;
};

TEST_F(PlayerController, WithNeitherUrlNorFileThereIsNoPlayer) {
    auto& neither = make();
    presentAgain();
    EXPECT_EQ(players_.made(), 0U);
    EXPECT_EQ(neither.player, nullptr);
    for (const auto operation :
         {&VLAVPlayerViewController::replay, &VLAVPlayerViewController::stopPlayback,
          &VLAVPlayerViewController::resumePlayback, &VLAVPlayerViewController::muteVideo,
          &VLAVPlayerViewController::unmuteVideo, &VLAVPlayerViewController::muteButtonClicked})
        (neither.*operation)();
    EXPECT_THAT(told_->calls, ElementsAre("failed -", "gone no"));
}

TEST_F(PlayerController, ItPlaysOnceItIsReadyAndOnceMoreForTheSecondRegistration) {
    auto& controller = present();
    EXPECT_THAT(player().calls, IsEmpty());
    EXPECT_FALSE(controller.spinner()->isHidden());
    player().become(PlayerStatus::readyToPlay);
    EXPECT_TRUE(controller.spinner()->isHidden());
    EXPECT_THAT(player().calls, IsEmpty()) << "at a later turn only";
    EXPECT_FALSE(controller.isVideoPlaying());
    settle();
    EXPECT_THAT(player().calls, ElementsAre("play", "play"));
    EXPECT_TRUE(controller.isVideoPlaying());
    EXPECT_THAT(told_->calls, IsEmpty());
}

TEST_F(PlayerController, OneThatIsReadyBeforeItAppearsPlaysWhenItAppearsToo) {
    auto& controller = load();
    become(PlayerStatus::readyToPlay);
    EXPECT_THAT(player().calls, ElementsAre("play"));
    controller.stopPlayback();
    player().setMuted(true);
    player().calls.clear();
    controller.viewDidAppear(true);
    EXPECT_TRUE(controller.isVideoPlaying());
    EXPECT_THAT(player().calls, IsEmpty()) << "at a later turn only";
    settle();
    EXPECT_THAT(player().calls, ElementsAre("play"));
    EXPECT_EQ(controller.muteButton()->imageFile().filename(), "SoundOff.png");
}

TEST_F(PlayerController, TheEndIsToldThenItIsDismissedAndThatIsTold) {
    auto& controller = present();
    become(PlayerStatus::readyToPlay);
    player().reachEnd();
    EXPECT_THAT(told_->calls, ElementsAre(std::string("end ") + kUrl, "will go"));
    EXPECT_TRUE(controller.playerDidFinishWithSuccess);
    letAnimationsEnd();
    EXPECT_EQ(told_->calls.size(), 3U);
    EXPECT_EQ(told_->calls.back(), "gone yes");
    EXPECT_EQ(controller.presentingViewController(), nullptr);

    // Of the two registrations one is left.
    player().calls.clear();
    become(PlayerStatus::readyToPlay);
    EXPECT_EQ(player().count("play"), 1);
}

TEST_F(PlayerController, LeavingStopsTheVideoAndAfterTheEndItSaysSoFirst) {
    auto& controller = present();
    become(PlayerStatus::readyToPlay);
    player().calls.clear();
    touch(controller.exitButton());
    EXPECT_THAT(player().calls, ElementsAre("rate 0"));
    EXPECT_THAT(told_->calls, IsEmpty());
    letAnimationsEnd();
    EXPECT_THAT(told_->calls, ElementsAre("gone no"));
    EXPECT_EQ(controller.presentingViewController(), nullptr);

    told_->calls.clear();
    presentAgain();
    controller.playerDidFinishWithSuccess = true;
    player().calls.clear();
    touch(controller.exitButton());
    EXPECT_THAT(told_->calls, ElementsAre("will go"));
    letAnimationsEnd();
    EXPECT_THAT(told_->calls, ElementsAre("will go", "gone no"));
    EXPECT_THAT(player().calls, IsEmpty());
}

TEST_F(PlayerController, AFailureIsToldForEachRegistrationAndTheDismissalOnce) {
    const auto failed = std::string("failed ") + kUrl;
    for (const auto status : {PlayerStatus::failed, PlayerStatus::unknown}) {
        SCOPED_TRACE(static_cast<int>(status));
        told_->calls.clear();
        auto& controller = present();
        become(PlayerStatus::readyToPlay);
        ASSERT_TRUE(controller.isVideoPlaying());
        player().become(status);
        EXPECT_FALSE(controller.isVideoPlaying());
        EXPECT_TRUE(controller.spinner()->isHidden());
        EXPECT_THAT(told_->calls, ElementsAre(failed, failed));
        letAnimationsEnd();
        EXPECT_THAT(told_->calls, ElementsAre(failed, failed, "gone no"));
        become(status);
        EXPECT_EQ(told_->calls.size(), 3U) << "nothing is observed any more";
        controller.player.reset();
    }
}

TEST_F(PlayerController, AFailureBeforeItAppearsIsToldOnceAndItGoesWhenItHasAppeared) {
    auto& controller = makeWithUrl();
    root()->presentViewController(controller_, true);
    player().become(PlayerStatus::failed);
    EXPECT_THAT(told_->calls, ElementsAre(std::string("failed ") + kUrl));
    EXPECT_NE(controller.presentingViewController(), nullptr);
    letAnimationsEnd();
    EXPECT_THAT(told_->calls, ElementsAre(std::string("failed ") + kUrl, "gone no"));
    EXPECT_EQ(controller.presentingViewController(), nullptr);
}

TEST_F(PlayerController, TheUrlGoesBeforeTheFileAndTheVeryTextThatWasPlayedIsTold) {
    for (const auto& url : {std::optional<std::string>("no url"), std::optional<std::string>()}) {
        told_->calls.clear();
        auto& controller = make();
        controller.setUrlString(url);
        controller.setVideoPath("/videos/ad.mp4");
        static_cast<void>(controller.view());
        player().become(PlayerStatus::failed);
        player().reachEnd();
        const auto played = url.value_or("/videos/ad.mp4");
        EXPECT_EQ(player().source, (url ? "url " : "file ") + played);
        EXPECT_THAT(told_->calls, ElementsAre("failed " + played, "end " + played, "will go"));
        controller.player.reset();
    }
}

TEST_F(PlayerController, ChangesOfAnotherPlayerOnlyStopTheSpinner) {
    auto& controller = load();
    ScriptedPlayer other("other");
    controller.playerStatusDidChange(other);
    settle();
    EXPECT_TRUE(controller.spinner()->isHidden());
    EXPECT_THAT(told_->calls, IsEmpty());
    EXPECT_THAT(player().calls, IsEmpty());
}

TEST_F(PlayerController, ReplayingPlaysFromTheStartWhetherOrNotThatWasReached) {
    auto& controller = present();
    become(PlayerStatus::readyToPlay);
    player().reachEnd();
    letAnimationsEnd();
    for (const bool finished : {true, false}) {
        player().calls.clear();
        controller.replay();
        EXPECT_THAT(player().calls, ElementsAre("seek 0"));
        player().finishSeeks(finished);
        EXPECT_THAT(player().calls, ElementsAre("seek 0", "play"));
    }
}

TEST_F(PlayerController, WhatWasStoppedIsNotResumed) {
    auto& controller = present();
    controller.stopPlayback();
    EXPECT_THAT(player().calls, IsEmpty()) << "it does not play yet";
    become(PlayerStatus::readyToPlay);
    player().calls.clear();
    controller.resumePlayback();
    EXPECT_THAT(player().calls, IsEmpty()) << "at a later turn only";
    settle();
    EXPECT_THAT(player().calls, ElementsAre("play"));
    controller.stopPlayback();
    controller.stopPlayback();
    controller.resumePlayback();
    settle();
    EXPECT_THAT(player().calls, ElementsAre("play", "pause"));
    EXPECT_FALSE(controller.isVideoPlaying());
}

TEST_F(PlayerController, ItLivesAsLongAsItsPlayerAndNoLonger) {
    load();
    const std::weak_ptr<VLAVPlayerViewController> weak = controller_;
    controller_.reset();
    EXPECT_FALSE(weak.expired());
    player().length = 4;
    player().tick(1);
    EXPECT_THAT(told_->calls, ElementsAre("progress 0.25 at 1"));
    weak.lock()->player.reset();
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(players_.alive(), 0U);
}

TEST_F(PlayerController, ItsOwnerMayDropThePlayerInAnyCall) {
    const std::vector<std::function<void()>> events{
        [&] { player().tick(1); },
        [&] { player().reachEnd(); },
        [&] { player().become(PlayerStatus::failed); },
        [&] { touch(controller_->muteButton()); },
    };
    for (const auto& event : events) {
        present();
        const std::weak_ptr<VLAVPlayerViewController> weak = controller_;
        told_->onCall = [&](const std::string&) {
            if (controller_) controller_->player.reset();
            controller_.reset();
        };
        event();
        root()->dismissViewControllerAnimated(false);
        letAnimationsEnd();
        EXPECT_TRUE(weak.expired());
        EXPECT_EQ(players_.alive(), 0U);
    }
}

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
    EXPECT_EQ(controller.getVideoDuration().value_or(0), 8);
    player().pass(3.99);
    player().length = 16;
    player().tick(15.9999);
    EXPECT_EQ(controller.progressLabel()->text(), "99%");
    player().tick(20);
    EXPECT_EQ(controller.progressLabel()->text(), "125%");
    EXPECT_THAT(told_->calls, ElementsAre("progress 0 at 0", "progress 0.46875 at 3.75",
                                          "progress 0.999994 at 15.9999", "progress 1.25 at 20"));
    EXPECT_THAT(shown, ElementsAre(0, 0, 0.46875, static_cast<double>(15.9999F / 16)));
    EXPECT_EQ(controller.getVideoDuration().value_or(0), 8);
    EXPECT_EQ(controller.progressLabel()->attributes().foregroundColor, QColor(132, 133, 133));
    EXPECT_EQ(controller.progressLabel()->attributes().paragraphStyle->alignment, TextAlignment::center);
}

TEST_F(PlayerController, AnUnknownDurationIsToldAsItIsAndShownAsNothing) {
    auto& controller = load();
    player().tick(1);
    EXPECT_TRUE(std::isnan(controller.getVideoDuration().value_or(0)));
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
