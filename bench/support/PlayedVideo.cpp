#include "support/PlayedVideo.h"

#include "harness/EventLoop.h"
#include "screen/Application.h"
#include "screen/qt/player/QtPlayer.h"
#include "ui/VLAVPlayerViewController.h"
#include <velmora/VLAdShowOptions.h>

#include <algorithm>

#include <QPixmap>
#include <QScreen>
#include <sys/resource.h>

namespace velmora::bench {

namespace {

double used(int who) {
    rusage usage{};
    getrusage(who, &usage);
    const auto milliseconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1000 + static_cast<double>(time.tv_usec) / 1000;
    };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

}  // namespace

Cost Cost::now() { return {.process = used(RUSAGE_SELF), .thread = used(RUSAGE_THREAD)}; }

void coverScreen(QWidget& window) {
    QPalette palette = window.palette();
    palette.setColor(QPalette::Window, Qt::black);
    window.setPalette(palette);
    window.setGeometry(window.screen()->geometry());
    window.show();
}

bool hasPicture(const QWidget& window) {
    constexpr int side = 32;
    // Beside the middle, where the panel lies that says that something loads.
    const QPoint corner(window.width() / 4, window.height() / 2);
    const auto image =
        window.screen()->grabWindow(window.winId(), corner.x(), corner.y(), side, side).toImage();
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qGray(image.pixel(x, y)) > 16) return true;
    return false;
}

void PlayedLayer::open(const std::string& file) {
    player_ = screen::Player::playerWithFile(file);
    auto* layer = player_->makeLayer(&window_);
    layer->setGeometry(window_.rect());
    layer->show();
    player_->play();
}

PlayedScreen::PlayedScreen()
    : controller_(std::make_shared<VLAVPlayerViewController>(std::make_shared<VLAdShowOptions>(),
                                                             VLCreativeType::video)) {
    host_.show();
}

void PlayedScreen::open(const std::string& file) {
    controller_->setVideoFilePath(file);
    screen::Application::rootViewController()->presentViewController(controller_, false);
    controller_->setSkipButtonVisible(true);
}

PlayedScreen::~PlayedScreen() {
    bool isGone = false;
    controller_->dismissViewControllerAnimated(false, [&] { isGone = true; });
    test::runUntil([&] { return isGone; });
    controller_->player.reset();
    controller_.reset();
    test::settle();
}

double PlayedScreen::position() const { return controller_->player->currentTime(); }

std::shared_ptr<screen::Player> CountingPlayers::makeWithUrl(const std::string& url) {
    return note(std::make_shared<screen::QtPlayer>(QUrl(QString::fromStdString(url))));
}

std::shared_ptr<screen::Player> CountingPlayers::makeWithFile(const std::filesystem::path& file) {
    return note(
        std::make_shared<screen::QtPlayer>(QUrl::fromLocalFile(QString::fromStdString(file.string()))));
}

std::shared_ptr<screen::Player> CountingPlayers::note(std::shared_ptr<screen::Player> player) {
    players_.push_back(player);
    return player;
}

int CountingPlayers::alive() const {
    return static_cast<int>(std::count_if(players_.begin(), players_.end(),
                                          [](const auto& player) { return !player.expired(); }));
}

}  // namespace velmora::bench
