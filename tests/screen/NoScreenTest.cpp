#include "platform/Screen.h"
#include "screen/Application.h"

#include "platform/Application.h"
#include "screen/ViewController.h"
#include "support/Application.h"
#include "support/LogCapture.h"
#include "tools/UserInfoGate.h"

#include <memory>
#include <optional>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

TEST(NoScreen, NothingIsPresentedAndNothingFails) {
    // Without any application object at first, then with one that has no windows.
    std::optional<Application> application;
    for (int round = 0; round < 2; ++round, application.emplace()) {
        const LogCapture log;
        EXPECT_FALSE(screen::Application::hasScreen());
        EXPECT_EQ(screen::Application::rootViewController(), nullptr);
        EXPECT_EQ(platform::Screen::main().size.width, 0);
        EXPECT_EQ(platform::Screen::main().orientation, platform::InterfaceOrientation::unknown);
        EXPECT_FALSE(platform::Application::canOpenUrl("no-such-scheme:x"));

        const auto root = std::make_shared<screen::ViewController>();
        const auto one = std::make_shared<screen::ViewController>();
        screen::Application::setRootViewController(root);
        root->presentViewController(one, true, [] { FAIL() << "nothing can have appeared"; });
        root->dismissViewControllerAnimated(true, [] { FAIL() << "there was nothing to dismiss"; });
        EXPECT_TRUE(log.has("no QApplication"));
        EXPECT_EQ(one->presentingViewController(), nullptr);
        EXPECT_FALSE(one->isViewLoaded());
        screen::Application::setRootViewController(nullptr);
    }
}

TEST(NoScreen, TheRecordOfTheDeviceHasAScreenOfNoSize) {
    VLUserExtraInfoModelGate::open();
    const auto info = VLUserExtraInfoModel::getInstance();
    for (const auto& size : {info->screenWidth, info->screenHeight, info->screenDensity})
        EXPECT_EQ(size, platform::Property(0.0));
    EXPECT_EQ(info->screenOrientation, std::nullopt);
}

}  // namespace

}  // namespace velmora::test
