#include "platform/Clock.h"
#include "screen/Application.h"
#include "support/ManualClock.h"
#include "support/Screens.h"

#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <QWindow>
#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using namespace std::chrono_literals;

using screen::NavigationController;
using screen::ViewController;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

TEST_F(Screens, WhatLoadingAsksForComesAfterThePresentation) {
    const auto one = screen("a");
    one->onLoad = [&] {
        EXPECT_EQ(one->presentingViewController(), root());
        one->presentViewController(screen("b"), false, note("b is there"));
        root()->dismissViewControllerAnimated(false, note("gone"));
    };
    root()->presentViewController(one, true, note("a is there"));
    EXPECT_TRUE(heard("gone"));
    EXPECT_THAT(events_, ElementsAre("a loaded", "a laid out", "a appeared", "a is there", "b loaded",
                                     "b laid out", "b appeared", "b is there", "gone"));
    one->onLoad = {};
}

TEST_F(Screens, OneThatComesBackIsLaidOutAgainAndLoadedOnce) {
    const auto bottom = screen("bottom");
    const auto video = screen("video");
    root()->presentViewController(bottom, false, note("1"));
    bottom->presentViewController(video, false, note("2"));
    ASSERT_TRUE(heard("2"));
    events_.clear();
    bottom->dismissViewControllerAnimated(
        false, [&] { bottom->presentViewController(video, false, note("again")); });
    EXPECT_TRUE(heard("again"));
    EXPECT_THAT(events_, ElementsAre("bottom appeared", "video laid out", "video appeared", "again"));
}

TEST_F(Screens, DismissingFromTheMiddleTakesAllAboveWithIt) {
    std::vector<std::shared_ptr<Screen>> stack;
    std::shared_ptr<ViewController> presenter = root();
    for (const std::string name : {"a", "b", "c", "d"}) {
        stack.push_back(screen(name));
        presenter->presentViewController(stack.back(), false, note(name));
        presenter = stack.back();
    }
    ASSERT_TRUE(heard("d"));
    events_.clear();
    stack[1]->dismissViewControllerAnimated(true, note("gone"));
    EXPECT_TRUE(heard("gone"));
    EXPECT_THAT(events_, ElementsAre("b appeared", "gone"));
    EXPECT_EQ(stack[1]->presentedViewController(), nullptr);
    EXPECT_EQ(stack[3]->presentingViewController(), nullptr);
    // One that presents nothing dismisses itself.
    stack[1]->dismissViewControllerAnimated(false, note("b too"));
    EXPECT_TRUE(heard("b too"));
    EXPECT_EQ(root()->presentedViewController(), stack[0]);
}

TEST_F(Screens, WhatSomebodyElsePresentedOverOneThatGoesStays) {
    const auto inside = screen("inside");
    const auto navigation = std::make_shared<NavigationController>(inside);
    const auto page = screen("page");
    const auto over = screen("over");
    root()->presentViewController(navigation, false, note("1"));
    inside->presentViewController(page, false, note("2"));
    root()->presentViewController(over, false, note("3"));
    over->presentViewController(screen("top"), false, note("4"));
    ASSERT_TRUE(heard("4"));
    EXPECT_EQ(over->presentingViewController(), root());
    events_.clear();
    navigation->dismissViewControllerAnimated(true, note("gone"));
    EXPECT_TRUE(heard("gone"));
    EXPECT_THAT(events_, ElementsAre("gone")) << "what is on top has been there all the time";
    EXPECT_EQ(page->presentingViewController(), nullptr);
    EXPECT_FALSE(page->view()->isVisible());
    EXPECT_EQ(root()->presentedViewController(), over);
    EXPECT_TRUE(over->view()->isVisible());

    // All that one presents goes by it, in whatever order it lies there.
    root()->presentViewController(page, false, note("beside"));
    ASSERT_TRUE(heard("beside"));
    root()->dismissViewControllerAnimated(true, note("all gone"));
    EXPECT_TRUE(heard("all gone"));
    EXPECT_EQ(page->presentingViewController(), nullptr);
    EXPECT_EQ(over->presentingViewController(), nullptr);
}

TEST_F(Screens, APresenterOutlivesItsWindowForAsLongAsItPresents) {
    const auto one = screen("a");
    {
        QWidget other;
        other.show();
        other.activateWindow();
        ASSERT_TRUE(runUntil([&] { return other.isActiveWindow(); }));
        root()->presentViewController(one, false, note("there"));
        ASSERT_TRUE(heard("there"));
        window_.activateWindow();
        ASSERT_TRUE(runUntil([&] { return window_.isActiveWindow(); }));
        // Another window has come to the front, and has a root of its own.
        EXPECT_NE(one->presentingViewController(), root());
        EXPECT_EQ(root()->presentedViewController(), nullptr);
    }
    EXPECT_TRUE(one->view()->isVisible());
    ASSERT_NE(one->presentingViewController(), nullptr);
    one->presentingViewController()->dismissViewControllerAnimated(true, note("gone"));
    EXPECT_TRUE(heard("gone"));
}

TEST_F(Screens, NobodyIsToldAnythingAfterTheWindowWasClosed) {
    const auto closeIt = [](Screen& one) { one.view()->window()->close(); };
    const auto one = screen("a");
    // Before its end is told, and while something waits.
    one->onAppear = [&] {
        one->presentViewController(screen("b"), false, note("never"));
        closeIt(*one);
        EXPECT_EQ(one->presentingViewController(), nullptr);
    };
    root()->presentViewController(one, false, note("never"));
    one->presentViewController(screen("c"), false, note("never"));
    EXPECT_TRUE(heard("a appeared"));
    EXPECT_TRUE(neverHeard("never"));

    one->onAppear = {};
    root()->presentViewController(one, false, note("never"));
    closeIt(*one);
    // What is asked for right after is for a window of its own.
    root()->presentViewController(one, false, note("again"));
    EXPECT_TRUE(heard("again"));
    EXPECT_TRUE(one->view()->isVisible());
    EXPECT_THAT(events_, Not(Contains("never")));
}

TEST_F(Screens, AViewMayCloseTheWindowWhileItLoads) {
    const auto bottom = screen("bottom");
    root()->presentViewController(bottom, false, note("1"));
    ASSERT_TRUE(heard("1"));
    auto top = screen("top");
    top->onLoad = [&] { bottom->view()->window()->close(); };
    bottom->presentViewController(top, true, note("never"));
    top.reset();
    EXPECT_TRUE(neverHeard("never"));
    EXPECT_EQ(alive, 1);
}

TEST_F(Screens, AWindowThatSomebodyDeletesTakesNoViewWithIt) {
    const auto one = screen("a");
    root()->presentViewController(one, false, note("there"));
    ASSERT_TRUE(heard("there"));
    delete one->view()->window();
    EXPECT_EQ(one->presentingViewController(), nullptr);
    EXPECT_FALSE(one->view()->isVisible());
    root()->presentViewController(one, false, note("again"));
    EXPECT_TRUE(heard("again"));
}

TEST_F(Screens, AControllerPresentsNeitherItselfNorWhatHoldsIt) {
    const auto inside = screen("inside");
    const auto navigation = std::make_shared<NavigationController>(inside);
    root()->presentViewController(root(), false, note("never"));
    root()->presentViewController(nullptr, false, note("never"));
    root()->presentViewController(navigation, false);
    inside->presentViewController(inside, false, note("never"));
    inside->presentViewController(navigation, false, note("never"));
    root()->presentViewController(navigation, false, note("never"));
    EXPECT_TRUE(neverHeard("never"));
    EXPECT_EQ(inside->presentedViewController(), nullptr);
}

TEST_F(Screens, ViewsFollowTheSizeOfTheirWindow) {
    const auto inside = screen("a");
    const auto navigation = std::make_shared<NavigationController>(inside);
    root()->presentViewController(navigation, false, note("there"));
    ASSERT_TRUE(heard("there"));
    inside->view()->window()->resize(320, 480);
    EXPECT_TRUE(heard("a laid out"));
    EXPECT_EQ(inside->view()->size(), QSize(320, 480));
}

TEST_F(Screens, TheWindowLiesOverThatOfTheApplicationAndNeedsItNoLonger) {
    const auto one = screen("a");
    auto dialog = std::make_unique<QWidget>();
    dialog->setWindowModality(Qt::ApplicationModal);
    dialog->show();
    dialog->activateWindow();
    ASSERT_TRUE(runUntil([&] { return dialog->isActiveWindow(); }));
    root()->presentViewController(one, false, note("there"));
    ASSERT_TRUE(heard("there"));
    const auto* window = one->view()->window()->windowHandle();
    // A window that is not the dialog's would be blocked by it.
    EXPECT_EQ(window->transientParent(), dialog->windowHandle());
    dialog.reset();
    EXPECT_EQ(window->transientParent(), nullptr);
    EXPECT_TRUE(one->view()->isVisible());
    one->dismissViewControllerAnimated(true, note("gone"));
    EXPECT_TRUE(heard("gone"));
}

TEST_F(Screens, AClockThatIsSetBackEndsTheAnimation) {
    struct SetBack final : platform::Clock {
        std::chrono::system_clock::time_point now() const override { return time; }
        void after(std::chrono::milliseconds, Work work) override { next = std::move(work); }

        std::chrono::system_clock::time_point time{24h};
        Work next;
    };

    const auto clock = std::make_shared<SetBack>();
    platform::Clock::replace(clock);
    root()->presentViewController(screen("a"), true, note("there"));
    clock->time -= 1h;
    ASSERT_TRUE(clock->next);
    clock->next();
    EXPECT_TRUE(heard("there"));
    platform::Clock::replace(nullptr);
}

TEST_F(Screens, TheEndOfAPresentationIsNotThatOfTheApplication) {
    const auto own = std::make_shared<ViewController>();
    screen::Application::setRootViewController(own);
    window_.hide();
    int quits = 0;
    const auto watch = QObject::connect(qApp, &QGuiApplication::lastWindowClosed, [&] { ++quits; });
    // Only an application that runs its loop is ended by its last window.
    QTimer::singleShot(0, [&] {
        own->presentViewController(screen("a"), false, note("there"));
        own->dismissViewControllerAnimated(false, note("gone"));
        EXPECT_TRUE(heard("gone"));
        const auto closed = screen("b");
        own->presentViewController(closed, false, note("there again"));
        EXPECT_TRUE(heard("there again"));
        closed->view()->window()->close();
        EXPECT_TRUE(neverHeard("never"));
        QCoreApplication::exit();
    });
    QCoreApplication::exec();
    EXPECT_EQ(quits, 0);
    QObject::disconnect(watch);
    screen::Application::setRootViewController(nullptr);
}

// The last one, because it leaves something on the screen.
TEST(TheEnd, WhatIsOnTheScreenGoesWithTheApplicationObject) {
    static Events events;
    static std::shared_ptr<Screen> kept;
    static QWidget* window = new QWidget;
    qAddPostRoutine([] { delete window; });
    window->show();
    kept = std::make_shared<Screen>("kept", events);
    const auto root = screen::Application::rootViewController();
    root->presentViewController(kept, false);
    kept->presentViewController(std::make_shared<Screen>("b", events), true);
    ASSERT_TRUE(runUntil([] { return !events.empty() && events.back() == "b laid out"; }));
    std::atexit([] {
        const bool left = alive != 1 || kept->presentingViewController() != nullptr;
        kept.reset();
        if (!left && alive == 0) return;
        std::cerr << "something stays on a screen that has gone" << std::endl;
        std::_Exit(EXIT_FAILURE);
    });
}

}  // namespace

}  // namespace velmora::test
