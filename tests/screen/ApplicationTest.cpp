#include "platform/Application.h"
#include "platform/Screen.h"
#include "screen/ViewController.h"

#include "harness/EventLoop.h"
#include "support/LogCapture.h"
#include "support/OddUrls.h"
#include "support/Opener.h"
#include "support/TurnedScreen.h"

#include <future>
#include <string>

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using platform::Application;

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
    const auto own = std::make_shared<platform::ViewController>();
    Application::setRootViewController(own);
    EXPECT_EQ(Application::rootViewController(), own);
    Application::setRootViewController(nullptr);
    EXPECT_EQ(Application::rootViewController(), ofFirst);
    first.hide();
    EXPECT_EQ(Application::rootViewController(), nullptr);
}

TEST(Application, AUrlIsOpenedByTheDesktopAsItStands) {
    const Opener opener("velmora-test");
    const std::string url = "velmora-test:a'b$(touch%20x);d&e=%D8%A7,*~";
    EXPECT_FALSE(Application::canOpenUrl("no-such-scheme:x"));
    EXPECT_FALSE(Application::canOpenUrl("no scheme"));
    EXPECT_FALSE(Application::canOpenUrl(""));
    EXPECT_FALSE(Application::canOpenUrl("//velmora-test"));
    for (const auto& odd : oddUrls("velmora-test:")) EXPECT_TRUE(Application::canOpenUrl(odd)) << odd;
    for (const auto& none : noUrls("velmora-test:")) {
        EXPECT_FALSE(Application::canOpenUrl(none)) << none;
        Application::openUrl(none);
    }
    ASSERT_TRUE(Application::canOpenUrl(url));
    Application::openUrl(url);
    EXPECT_TRUE(runUntil([&] { return !opener.opened().empty(); }));
    EXPECT_THAT(opener.opened(), testing::ElementsAre(url));
}

TEST(Application, AUrlThatNobodyOpensIsLogged) {
    for (const std::string url : {"no-such-scheme:x", "no URL"}) {
        const LogCapture log;
        Application::openUrl(url);
        EXPECT_TRUE(runUntil([&] { return log.has("A URL cannot be opened"); })) << url;
    }
}

}  // namespace

}  // namespace velmora::test
