#include "ui/PlayerScreen.h"

#include "ui/VLActivityIndicatorView.h"

#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using platform::PlayerStatus;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(PlayerController, TheUrlGoesBeforeTheFileAndWithNeitherThereIsNoPlayer) {
    auto& both = make();
    both.setUrlString(kUrl);
    both.setVideoPath("/videos/ad.mp4");
    static_cast<void>(both.view());
    EXPECT_EQ(player().source, std::string("url ") + kUrl);
    both.player.reset();

    auto& neither = make();
    presentAgain();
    EXPECT_EQ(players_.made(), 1U);
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

TEST_F(PlayerController, TheVeryTextThatWasPlayedIsTold) {
    for (const auto& url : {std::optional<std::string>("no url"), std::optional<std::string>()}) {
        told_->calls.clear();
        auto& controller = make();
        controller.setUrlString(url);
        controller.setVideoPath("/videos/ad.mp4");
        static_cast<void>(controller.view());
        player().become(PlayerStatus::failed);
        player().reachEnd();
        const auto played = url.value_or("/videos/ad.mp4");
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

}  // namespace

}  // namespace velmora::test
