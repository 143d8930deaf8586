#pragma once

#include "harness/EventLoop.h"
#include "platform/Application.h"
#include "support/ManualClock.h"
#include "support/ScriptedPlayer.h"
#include "ui/ImageButton.h"
#include "ui/Told.h"
#include "ui/VLAVPlayerViewController.h"
#include <velmora/VLAdShowOptions.h>

#include <memory>

#include <QApplication>
#include <QTest>
#include <gtest/gtest.h>

namespace velmora::test {

inline constexpr auto kUrl = "https://media.example/ad.mp4";

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

    static std::shared_ptr<platform::ViewController> root() {
        return platform::Application::rootViewController();
    }

    [[nodiscard]] ScriptedPlayer& player() const { return *players_.last(); }

    void become(platform::PlayerStatus status) {
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

}  // namespace velmora::test
