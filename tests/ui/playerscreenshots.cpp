#include "platform/Application.h"
#include "support/EventLoop.h"
#include "ui/ImageButton.h"
#include "ui/VLAVPlayerViewController.h"
#include <velmora/VLAdShowOptions.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include <QApplication>
#include <QDir>
#include <QPixmap>

// Shows a video in the player's screen and draws what is seen into PNG files in the folder given.
// QT_QPA_PLATFORM=offscreen:configfile=FILE describes another screen.

namespace velmora::test {

namespace {

class Show {
public:
    Show(QString folder, const char* video) : folder_(std::move(folder)) {
        controller_->setVideoPath(video);
        window_.show();
        platform::Application::rootViewController()->presentViewController(controller_, false);
    }

    ~Show() { controller_->player.reset(); }

    Show(const Show&) = delete;
    Show& operator=(const Show&) = delete;

    bool isReady() {
        auto& controller = *controller_;
        const bool plays = runUntil([&] { return controller.isVideoPlaying(); });
        // Each of the two registrations plays.
        settle();
        controller.stopPlayback();
        return plays;
    }

    void sendTo(double part) {
        auto& player = *controller_->player;
        bool isThere = false;
        player.seek(part * player.duration(), [&](bool) { isThere = true; });
        runUntil([&] { return isThere; });
        // The picture comes a little after.
        runUntil([] { return false; }, std::chrono::milliseconds(300));
    }

    void draw(const char* name) {
        settle();
        controller_->view()->grab().save(folder_ + '/' + name + ".png");
    }

    VLAVPlayerViewController& controller() { return *controller_; }

    void hideExit() {
        options_->setBackDisabled(true);
        controller_->viewDidLayoutSubviews();
    }

private:
    QString folder_;
    QWidget window_;
    std::shared_ptr<VLAdShowOptions> options_ = std::make_shared<VLAdShowOptions>();
    std::shared_ptr<VLAVPlayerViewController> controller_ =
        std::make_shared<VLAVPlayerViewController>(options_, VLCreativeType::video);
};

bool drawAll(const QString& folder, const char* video) {
    Show show(folder, video);
    show.draw("loading");
    if (!show.isReady()) return false;
    show.sendTo(0);
    show.draw("start");
    show.sendTo(0.5);
    show.draw("half");
    show.controller().muteVideo();
    show.draw("muted");
    show.controller().setSkipButtonVisible(true);
    show.sendTo(0.995);
    show.draw("end-skip");
    show.hideExit();
    show.draw("no-exit");
    return true;
}

}  // namespace

}  // namespace velmora::test

int main(int count, char** arguments) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("VELMORA_RESOURCES", VELMORA_RESOURCES, 0);
    const QApplication application(count, arguments);
    if (count != 3) {
        std::fputs("usage: playerscreenshots FOLDER VIDEO\n", stderr);
        return EXIT_FAILURE;
    }
    QDir().mkpath(arguments[1]);
    return velmora::test::drawAll(arguments[1], arguments[2]) ? EXIT_SUCCESS : EXIT_FAILURE;
}
