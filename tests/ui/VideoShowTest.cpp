#include "harness/EventLoop.h"
#include "harness/Videos.h"
#include "screen/Application.h"
#include "support/TurnedScreen.h"
#include "ui/ImageButton.h"
#include "ui/Told.h"
#include "ui/VLAVPlayerViewController.h"
#include <velmora/VLAdShowOptions.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <QApplication>
#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using testing::ElementsAre;
using testing::StartsWith;

class VideoShow : public testing::Test {
protected:
    VideoShow() { window_.show(); }

    using Source = void (VLAVPlayerViewController::*)(std::optional<std::string>);

    std::shared_ptr<VLAVPlayerViewController>
    present(const std::string& video, Source source = &VLAVPlayerViewController::setUrlString) {
        told_ = std::make_shared<Told>();
        auto controller = std::make_shared<VLAVPlayerViewController>(std::make_shared<VLAdShowOptions>(),
                                                                     VLCreativeType::video);
        controller->delegate = told_;
        (*controller.*source)(video);
        screen::Application::rootViewController()->presentViewController(controller, true);
        return controller;
    }

    /// Until it has gone.
    bool goes() {
        return runUntil([&] { return !told_->calls.empty() && told_->calls.back().starts_with("gone"); });
    }

    /// What it was told apart from progress.
    [[nodiscard]] std::vector<std::string> events() const {
        std::vector<std::string> found = told_->calls;
        std::erase_if(found, [](const auto& call) { return call.starts_with("progress"); });
        return found;
    }

    bool plays() {
        return runUntil([&] { return told_->calls.size() - events().size() > 1; });
    }

    Videos videos_;
    QWidget window_;
    std::shared_ptr<Told> told_;
};

TEST_F(VideoShow, AFileIsPlayedByItsPathWhateverItsName) {
    const auto usual = videos_.usual(1);
    for (const std::string name :
         {"100%.mp4", "%20 %zz.mp4", "a#b?c d.mp4", "سلام;&'\"|.mp4", "http:a.mp4"}) {
        const auto file = usual.parent_path() / name;
        std::filesystem::copy_file(usual, file);
        const auto controller = present(file.string(), &VLAVPlayerViewController::setVideoFilePath);
        ASSERT_TRUE(goes());
        EXPECT_THAT(events(), ElementsAre("end " + file.string(), "will go", "gone yes"));
        controller->player.reset();
    }
}

TEST_F(VideoShow, AScreenThatIsTurnedIsFilledAndTheVideoGoesOn) {
    const auto url = "file://" + videos_.usual(3).string();
    const auto controller = present(url);
    ASSERT_TRUE(plays());
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
    EXPECT_THAT(events(), ElementsAre("end " + url, "will go", "gone yes"));
    EXPECT_NEAR(controller->getVideoDuration().value_or(0), 3, 0.1);
    EXPECT_LT(std::stod(told_->calls.front().substr(std::string("progress ").size())), 0.1);
    EXPECT_THAT(told_->calls.end()[-4], StartsWith("progress 1 at "));
    controller->player.reset();
}

TEST_F(VideoShow, NothingIsLeftOfTwentyShows) {
    const auto url = "file://" + videos_.usual(1).string();
    for (int round = 0; round < 20; ++round) {
        auto controller = present(url);
        const std::weak_ptr<VLAVPlayerViewController> shown = controller;
        ASSERT_TRUE(plays());
        const std::weak_ptr<screen::Player> player = controller->player;
        controller->exitButtonTouched();
        ASSERT_TRUE(goes());
        EXPECT_THAT(events(), ElementsAre("gone no"));
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
