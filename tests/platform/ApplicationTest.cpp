#include "platform/Application.h"
#include "platform/Screen.h"

#include "support/Environment.h"
#include "support/EventLoop.h"
#include "support/LogCapture.h"
#include "support/OddUrls.h"
#include "support/Screens.h"
#include "support/TemporaryDirectory.h"
#include "support/TurnedScreen.h"

#include <filesystem>
#include <fstream>
#include <future>
#include <string>

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
    const TemporaryDirectory home;
    const auto seen = home / "seen";
    const auto applications = home / "applications";
    std::filesystem::create_directories(applications);
    const auto program = home / "opener";
    std::ofstream(program) << "#!/bin/sh\nprintf '%s\\n' \"$@\" > '" << seen.string() << "'.new && mv '"
                           << seen.string() << "'.new '" << seen.string() << "'\n";
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    std::ofstream(applications / "opener.desktop")
        << "[Desktop Entry]\nType=Application\nName=Opener\nExec=" << program.string()
        << " %u\nMimeType=x-scheme-handler/velmora-test;\n";
    std::ofstream(applications / "mimeapps.list")
        << "[Default Applications]\nx-scheme-handler/velmora-test=opener.desktop\n";
    ::setenv("XDG_DATA_HOME", home.path().c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", home.path().c_str(), 1);

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
    EXPECT_TRUE(runUntil([&] { return std::filesystem::exists(seen); }));
    std::string line;
    std::getline(std::ifstream(seen), line);
    EXPECT_EQ(line, url);
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
