#include "screen/ViewController.h"

#include "platform/Screen.h"
#include "screen/Application.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/Screens.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <QWidget>
#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using namespace std::chrono_literals;

using screen::NavigationController;
using screen::TabBarController;
using screen::ViewController;
using testing::ElementsAre;

TEST_F(Screens, APresentedOneIsLoadedLaidOutMovedInAndThenAppears) {
    const auto first = screen("a");
    EXPECT_FALSE(first->isViewLoaded());
    root()->presentViewController(first, true, note("done"));
    EXPECT_EQ(first->presentingViewController(), root());
    EXPECT_EQ(root()->presentedViewController(), first);
    EXPECT_TRUE(heard("done"));
    EXPECT_THAT(events_, ElementsAre("a loaded", "a laid out", "a appeared", "done"));
    const auto size = platform::Screen::main().size;
    EXPECT_EQ(first->view()->width(), size.width);
    EXPECT_EQ(first->view()->height(), size.height);
    EXPECT_TRUE(first->view()->isVisible());
    EXPECT_NE(first->view()->window(), &window_);

    first->dismissViewControllerAnimated(true, note("gone"));
    EXPECT_TRUE(heard("gone"));
    EXPECT_EQ(root()->presentedViewController(), nullptr);
    EXPECT_FALSE(first->view()->isVisible());
    first->dismissViewControllerAnimated(true, note("never"));
    EXPECT_FALSE(runUntil([&] { return events_.back() == "never"; }, 400ms));
}

TEST_F(Screens, WhatComesDuringAnAnimationWaitsForItsEnd) {
    const auto navigation = std::make_shared<NavigationController>(screen("a"));
    const auto inside = navigation->viewControllers().front();
    root()->presentViewController(navigation, true, note("1"));
    inside->presentViewController(screen("b"), true, note("2"));
    EXPECT_EQ(inside->presentedViewController(), nullptr);
    EXPECT_TRUE(heard("2"));
    const auto above = inside->presentedViewController();
    EXPECT_EQ(above->presentingViewController(), inside);
    EXPECT_EQ(inside->presentingViewController(), root());

    // Away with one and at once another in its place.
    above->dismissViewControllerAnimated(true, note("3"));
    inside->presentViewController(screen("c"), false, note("4"));
    EXPECT_TRUE(heard("4"));
    EXPECT_THAT(events_, ElementsAre("a loaded", "a laid out", "a appeared", "1", "b loaded", "b laid out",
                                     "b appeared", "2", "a appeared", "3", "c loaded", "c laid out",
                                     "c appeared", "4"));
    // From its bottom the whole stack goes, and what waits for a place in it comes to nothing.
    root()->dismissViewControllerAnimated(true, note("5"));
    inside->presentViewController(screen("d"), true, note("never"));
    EXPECT_TRUE(heard("5"));
    EXPECT_EQ(root()->presentedViewController(), nullptr);
    EXPECT_EQ(events_.size(), 15U);
}

TEST_F(Screens, AnAnimationTakesTimeByTheClock) {
    UseManualClock clock;
    const auto one = screen("a");
    root()->presentViewController(one, true, note("done"));
    const auto height = one->view()->height();
    EXPECT_EQ(one->view()->y(), height);
    clock->advance(100ms);
    EXPECT_TRUE(runUntil([&] { return one->view()->y() < height; }));
    EXPECT_GT(one->view()->y(), 0);
    EXPECT_EQ(events_.back(), "a laid out");
    clock->advance(200ms);
    EXPECT_TRUE(heard("done"));
    EXPECT_EQ(one->view()->y(), 0);
}

TEST_F(Screens, CompletionsMayPresentDismissAndThrow) {
    const LogCapture log;
    auto first = screen("a");
    root()->presentViewController(first, true, [&, weak = std::weak_ptr(first)] {
        weak.lock()->dismissViewControllerAnimated(true, [&] {
            root()->presentViewController(screen("b"), true, note("b is there"));
            throw std::runtime_error("the completion's fault");
        });
    });
    first.reset();
    EXPECT_TRUE(heard("b is there"));
    EXPECT_EQ(alive, 1);
    EXPECT_TRUE(log.has("the completion's fault"));
}

TEST_F(Screens, ContainersAnswerForWhatTheyShow) {
    const auto left = screen("left");
    const auto right = screen("right");
    right->mask = screen::InterfaceOrientationMask::portrait;
    const auto tabs = std::make_shared<TabBarController>(
        std::vector<std::shared_ptr<ViewController>>{left, nullptr, right});
    const auto navigation = std::make_shared<NavigationController>(tabs);
    EXPECT_EQ(tabs->selectedViewController(), left);
    tabs->setSelectedIndex(2);
    EXPECT_EQ(tabs->selectedViewController(), left);
    EXPECT_EQ(left->parentViewController(), tabs);
    root()->presentViewController(navigation, false, note("done"));
    EXPECT_TRUE(heard("done"));
    EXPECT_TRUE(left->view()->isVisible());
    tabs->setSelectedIndex(1);
    EXPECT_EQ(navigation->supportedInterfaceOrientations(), screen::InterfaceOrientationMask::portrait);
    EXPECT_FALSE(left->view()->isVisible());
    EXPECT_EQ(right->view()->size(), navigation->view()->size());
    right->removeFromParentViewController();
    EXPECT_EQ(right->parentViewController(), nullptr);
    EXPECT_THAT(tabs->viewControllers(), ElementsAre(left));
}

}  // namespace

}  // namespace velmora::test
