#include "platform/Application.h"
#include "support/EventLoop.h"
#include "support/Videos.h"
#include "ui/VLAVPlayerViewController.h"
#include "ui/VLAVPlayerViewControllerDelegate.h"
#include <velmora/VLAdShowOptions.h>

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

    std::shared_ptr<VLAVPlayerViewController> present(const std::string& url) {
        audience_ = std::make_shared<Audience>();
        auto controller = std::make_shared<VLAVPlayerViewController>(std::make_shared<VLAdShowOptions>(),
                                                                     VLCreativeType::video);
        controller->delegate = audience_;
        controller->setUrlString(url);
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
