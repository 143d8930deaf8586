#include "screen/Application.h"

#include "harness/EventLoop.h"
#include "platform/Screen.h"
#include "screen/ViewController.h"
#include "support/TurnedScreen.h"

#include <future>

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <gtest/gtest.h>

namespace velmora::test {

namespace {

using screen::Application;

TEST(Application, TheInterfaceStandsAsTheScreenDoes) {
    // Any thread may ask.
    const auto [size, scale, orientation] = std::async(platform::Screen::main).get();
    ASSERT_GT(size.width, 0);
    EXPECT_EQ(isLandscape(orientation), size.width > size.height);
    EXPECT_EQ(orientation == platform::InterfaceOrientation::portrait, size.height >= size.width);
    EXPECT_EQ(scale, QGuiApplication::primaryScreen()->devicePixelRatio());

    for (const auto& turned : {QSize(480, 800), QSize(800, 480)}) {
        const TurnedScreen screen(turned);
        const auto now = platform::Screen::main();
        EXPECT_EQ(now.size.width, turned.width());
        EXPECT_EQ(now.size.height, turned.height());
        EXPECT_EQ(isLandscape(now.orientation), turned.width() > turned.height());
    }
}

TEST(Application, EachWindowHasOneRootForAsLongAsItLives) {
    EXPECT_EQ(Application::rootViewController(), nullptr);
    QWidget first;
    first.show();
    first.activateWindow();
    const auto ofFirst = Application::rootViewController();
    ASSERT_NE(ofFirst, nullptr);
    {
        QWidget second;
        second.show();
        second.activateWindow();
        ASSERT_TRUE(runUntil([&] { return second.isActiveWindow(); }));
        EXPECT_NE(Application::rootViewController(), ofFirst);
        first.activateWindow();
        ASSERT_TRUE(runUntil([&] { return first.isActiveWindow(); }));
        EXPECT_EQ(Application::rootViewController(), ofFirst);
    }
    const auto own = std::make_shared<screen::ViewController>();
    Application::setRootViewController(own);
    EXPECT_EQ(Application::rootViewController(), own);
    Application::setRootViewController(nullptr);
    EXPECT_EQ(Application::rootViewController(), ofFirst);
    first.hide();
    EXPECT_EQ(Application::rootViewController(), nullptr);
}

}  // namespace

}  // namespace velmora::test
