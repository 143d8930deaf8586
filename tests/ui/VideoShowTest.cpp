#include "platform/Application.h"
#include "support/EventLoop.h"
#include "support/TurnedScreen.h"
#include "support/Videos.h"
#include "ui/ImageButton.h"
#include "ui/VLAVPlayerViewController.h"
#include "ui/VLAVPlayerViewControllerDelegate.h"
#include <velmora/VLAdShowOptions.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <QApplication>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::test {

namespace {

using testing::ElementsAre;

class Audience final : public VLAVPlayerViewControllerDelegate {
public:
    using Url = std::optional<std::string>;

    void vlAVPlayerViewControllerDidReachEndOfVideoWithUrl(VLAVPlayerViewController& shown,
                                                           const Url& url) override {
        calls.push_back("end " + url.value_or("-"));
        duration = platform::asDouble(shown.getVideoDuration());
    }
    void vlAVPlayerViewControllerCouldNotLoadVideoWithUrl(VLAVPlayerViewController&, const Url&) override {
        calls.emplace_back("failed");
    }
    void vlOnAVPlayerDismissed(bool finished) override {
        calls.emplace_back(finished ? "gone yes" : "gone no");
        isGone = true;
    }
    void vlOnProgressUpdated(float value, float) override { progress.push_back(value); }

    std::vector<std::string> calls;
    std::vector<float> progress;
    double duration = 0;
    bool isGone = false;
};

class VideoShow : public testing::Test {
protected:
    VideoShow() { window_.show(); }

    using Source = void (VLAVPlayerViewController::*)(std::optional<std::string>);

    std::shared_ptr<VLAVPlayerViewController>
    present(const std::string& video, Source source = &VLAVPlayerViewController::setUrlString) {
        audience_ = std::make_shared<Audience>();
        auto controller = std::make_shared<VLAVPlayerViewController>(std::make_shared<VLAdShowOptions>(),
                                                                     VLCreativeType::video);
        controller->delegate = audience_;
        (*controller.*source)(video);
        platform::Application::rootViewController()->presentViewController(controller, true);
        return controller;
    }

    bool goes() {
        return runUntil([&] { return audience_->isGone; });
    }

    Videos videos_;
    QWidget window_;
    std::shared_ptr<Audience> audience_;
};

TEST_F(VideoShow, AVideoIsToldFromItsStartToItsEndAndThenDismissed) {
    const auto url = "file://" + videos_.usual(1).string();
    const auto controller = present(url);
    ASSERT_TRUE(goes());
    EXPECT_THAT(audience_->calls, ElementsAre("end " + url, "gone yes"));
    EXPECT_NEAR(audience_->duration, 1, 0.1);
    ASSERT_GE(audience_->progress.size(), 4U);
    EXPECT_LT(audience_->progress.front(), 0.25F);
    EXPECT_EQ(audience_->progress.back(), 1.0F);
    controller->player.reset();
}

TEST_F(VideoShow, AFileIsPlayedByItsPathWhateverItsName) {
    const auto usual = videos_.usual(1);
    for (const std::string name :
         {"100%.mp4", "%20 %zz.mp4", "a#b?c d.mp4", "سلام;&'\"|.mp4", "http:a.mp4"}) {
        const auto file = usual.parent_path() / name;
        std::filesystem::copy_file(usual, file);
        const auto controller = present(file.string(), &VLAVPlayerViewController::setVideoFilePath);
        ASSERT_TRUE(goes());
        EXPECT_THAT(audience_->calls, ElementsAre("end " + file.string(), "gone yes"));
        controller->player.reset();
    }
}

TEST_F(VideoShow, AScreenThatIsTurnedIsFilledAndTheVideoGoesOn) {
    const auto url = "file://" + videos_.usual(3).string();
    const auto controller = present(url);
    ASSERT_TRUE(runUntil([&] { return audience_->progress.size() > 1; }));
    for (const auto& size : {QSize(480, 800), QSize(800, 480)}) {
        const TurnedScreen screen(size);
        const QRect all(QPoint(), size);
        EXPECT_TRUE(runUntil([&] { return controller->avPlayerLayer->geometry() == all; }));
        EXPECT_EQ(controller->view()->window()->geometry(), all);
        EXPECT_EQ(controller->view()->size(), size);
        EXPECT_EQ(controller->muteButton()->geometry().right(), size.width() - 9);
        EXPECT_EQ(controller->skipButton()->geometry().bottom(), size.height() - 9);
    }
    ASSERT_TRUE(goes());
    EXPECT_THAT(audience_->calls, ElementsAre("end " + url, "gone yes"));
    controller->player.reset();
}

TEST_F(VideoShow, AMissingVideoIsToldAndDismissed) {
    const auto controller = present("file://" + videos_.missing().string());
    ASSERT_TRUE(goes());
    EXPECT_EQ(audience_->calls.front(), "failed");
    EXPECT_EQ(audience_->calls.back(), "gone no");
    controller->player.reset();
}

TEST_F(VideoShow, NothingIsLeftOfTwentyShows) {
    const auto url = "file://" + videos_.usual(1).string();
    for (int round = 0; round < 20; ++round) {
        auto controller = present(url);
        const std::weak_ptr<VLAVPlayerViewController> shown = controller;
        ASSERT_TRUE(runUntil([&] { return audience_->progress.size() > 1; }));
        const std::weak_ptr<platform::Player> player = controller->player;
        controller->exitButtonTouched();
        ASSERT_TRUE(goes());
        EXPECT_THAT(audience_->calls, ElementsAre("gone no"));
        controller->player.reset();
        EXPECT_TRUE(player.expired());
        controller.reset();
        EXPECT_TRUE(runUntil([&] { return shown.expired(); }));
        settle();
        EXPECT_EQ(QApplication::allWidgets().size(), 1);
    }
}

}  // namespace

}  // namespace velmora::test
