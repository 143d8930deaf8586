#include "ui/VLAdShowUIController.h"

#include "harness/TemporaryDirectory.h"
#include "log/VLLog.h"
#include "support/LogCapture.h"
#include "support/Opener.h"
#include "ui/AdShow.h"
#include "ui/CallToAction.h"

#include <filesystem>
#include <fstream>
#include <utility>

#include <QScreen>
#include <gmock/gmock.h>

namespace velmora::test {

namespace {

/// The ad, with its video in that file.
std::shared_ptr<VelmoraAd> downloadedTo(const std::filesystem::path& file, std::shared_ptr<VelmoraAd> ad) {
    std::ofstream(file) << "video";
    ad->getRequestOptions()->setCacheType(VLCacheType::cached);
    ad->state().setVideoFilePath(file.string());
    return ad;
}

using screen::Application;
using screen::NavigationController;
using screen::TabBarController;
using screen::ViewController;
using testing::ElementsAre;

TEST_F(AdShow, TheSourceIsThatOfTheCacheTypeAndAReplayKeepsIt) {
    show(video());
    EXPECT_EQ(player()->source, "url http://127.0.0.1:1/v.mp4");
    EXPECT_THAT(pages_.made().front()->loads, ElementsAre("http://127.0.0.1:1/page"));
    play();
    tick({8});
    reachEnd();
    shown()->requestOptions->setCacheType(VLCacheType::cached);
    replay();
    EXPECT_EQ(shown()->videoPathOrUrl, "http://127.0.0.1:1/v.mp4");
    EXPECT_EQ(players_.made(), 1U);
    EXPECT_EQ(player()->calls.back(), "play");
    EXPECT_TRUE(player()->layer->isVisible());
    leave();

    const TemporaryDirectory folder;
    const auto file = folder / "video.mp4";
    show(downloadedTo(file, ready("s", video())));
    EXPECT_EQ(player()->source, "file " + file.string());
}

TEST_F(AdShow, TheFirstPictureComesInPlaceAndAReplaySlides) {
    for (const auto& creative : {video(), banner()}) {
        const auto ad = ready("s", creative);
        ad->showWithOptions(nullptr);
        // No time passes.
        settle();
        controller_ = inFront();
        ASSERT_NE(shown(), nullptr);
        const auto first = shown()->presentedViewController();
        ASSERT_NE(first, nullptr);
        EXPECT_TRUE(first->view()->isVisible());
        EXPECT_EQ(first->view()->mapTo(first->view()->window(), QPoint()), QPoint());
        rest();
        if (ad->isVideoAd()) fail();
    }
    command("close");

    playVideo({8});
    reachEnd();
    EXPECT_FALSE(page()->navigate("velmora://replay"));
    settle();
    clock_->advance(std::chrono::milliseconds(250));
    settle();
    EXPECT_EQ(player()->layer->mapTo(player()->layer->window(), QPoint()),
              QPoint(0, window_.screen()->size().height()));
    rest();
    EXPECT_EQ(player()->layer->mapTo(player()->layer->window(), QPoint()), QPoint());
    command("close");
}

TEST_F(AdShow, WhatMayNotBeShownIsLoggedAndNotShown) {
    VLLogger::setShallLog(true);
    const LogCapture log;
    const auto gone = ready("s", video());
    gone->getRequestOptions()->setCacheType(VLCacheType::cached);
    show(gone);
    EXPECT_TRUE(log.has("Ad is Expired/Invalid"));
    show(R"({"ctaType": 3, "ctaUrl": "u", "action": {"type": 2}})");
    EXPECT_TRUE(log.has("Ad type is not supported with this version of sdk."));
    EXPECT_EQ(inFront(), nullptr);

    // A handle without an ad passes, and leaves the screen empty until it is closed.
    show(std::make_shared<VelmoraAd>());
    ASSERT_NE(inFront(), nullptr);
    EXPECT_EQ(inFront()->presentedViewController(), nullptr);
}

TEST_F(AdShow, OneThatBecomesInvalidBeforeItsTurnLeavesTheScreenEmpty) {
    const TemporaryDirectory folder;
    const auto file = folder / "video.mp4";
    const auto ad = downloadedTo(file, ready("s", video()));
    ad->showWithOptions(nullptr);
    std::filesystem::remove(file);
    rest();
    controller_ = inFront();
    ASSERT_NE(shown(), nullptr);
    EXPECT_EQ(shown()->presentedViewController(), nullptr);
    EXPECT_EQ(players_.made(), 0U);
    EXPECT_EQ(told(), "");
    EXPECT_EQ(records(), "");
}

TEST_F(AdShow, OneThatIsToldToEndBeforeItsTurnEndsAndNothingElse) {
    show(video());
    const auto first = shown();
    first->videoView->dismissViewControllerAnimated(true);
    const std::weak_ptr<VLAdShowUIController> second = showUnasked(ready("t", video()));
    EXPECT_EQ(second.lock()->presentingViewController(), nullptr);
    EXPECT_FALSE(page()->navigate("velmora://close"));
    rest();
    EXPECT_TRUE(second.expired());
    EXPECT_EQ(told(), "false");
    EXPECT_EQ(inFront(), first);
    controller_ = first;
}

TEST_F(AdShow, ALibraryThatIsShutDownTakesItFromTheScreenAndTellsNobody) {
    playVideo({1});
    const std::weak_ptr<VLAdShowUIController> running = shown();
    Velmora::shutDown();
    rest();
    EXPECT_EQ(inFront(), nullptr);
    EXPECT_TRUE(running.expired());
    EXPECT_EQ(told(), "");
    Velmora::initializeWithAppKey("key");
    show(ready("t", video()));
    EXPECT_NE(inFront(), nullptr);
}

// An application often shows its next ad when it is told of the end of one.
TEST_F(AdShow, TheNextAdThatIsShownFromTheCallbackStays) {
    const std::pair<const char*, std::function<void()>> kEndings[] = {
        {"a page that closes twice at once",
         [this] {
             const auto closing = page();
             EXPECT_FALSE(closing->navigate("velmora://close"));
             // The next one waits for the end of the animation.
             settle();
             clock_->advance(std::chrono::milliseconds(100));
             settle();
             EXPECT_FALSE(closing->navigate("velmora://close"));
         }},
        {"a page that comes after the video",
         [this] {
             const auto closing = page();
             play();
             tick({8});
             reachEnd();
             EXPECT_TRUE(closing->widget->isVisible());
             EXPECT_FALSE(closing->navigate("velmora://close"));
         }},
        {"a video that is left", [this] { leave(); }},
        {"a video that fails", [this] { fail(); }},
    };
    for (const auto& [what, ends] : kEndings) {
        SCOPED_TRACE(what);
        show(video());
        const auto next = ready("s", video());
        onTold = [&](const auto&) {
            onTold = nullptr;
            next->showWithOptions(nullptr);
        };
        ends();
        rest();
        EXPECT_TRUE(controller_.expired());
        controller_ = inFront();
        ASSERT_NE(shown(), nullptr);
        EXPECT_EQ(shown()->tAd, next);
        EXPECT_EQ(players_.alive(), 1U);
        EXPECT_TRUE(player()->layer && player()->layer->isVisible());
        EXPECT_TRUE(player()->layer->window()->isFullScreen());
        fail();
    }
}

TEST_F(AdShow, APageBehindTheVideoThatSaysThatItIsDoneLeavesTheVideoAlone) {
    show(video());
    play();
    page()->finish("http://127.0.0.1:1/VelmoraSuggestionIsDone");
    rest();
    EXPECT_TRUE(player()->layer->isVisible());
    EXPECT_EQ(player()->count("pause"), 0);
    tick({8});
    reachEnd();
    EXPECT_TRUE(page()->widget->isVisible());
    EXPECT_EQ(told(), "true");
}

TEST_F(AdShow, ThePageTakesThePlaceOfAVideoThatIsStillThere) {
    show(video());
    shown()->showActionWebView();
    rest();
    EXPECT_TRUE(page()->widget->isVisible());
    EXPECT_FALSE(player()->layer->isVisible());
    EXPECT_EQ(shown()->presentedViewController(), shown()->webView);
}

TEST_F(AdShow, ThePageOpensWhatTheDesktopCanOpenAndTheShowGoesOn) {
    VLLogger::setShallLog(true);
    const Opener opener("velmora-test");
    const LogCapture log;
    show(banner());
    command("open?type=web&target=no-such-scheme:x");
    command("open");
    command("open?type=web&target=velmora-test:that");
    EXPECT_TRUE(runUntil([&] { return !opener.opened().empty(); }));
    EXPECT_THAT(opener.opened(), ElementsAre("velmora-test:that"));
    EXPECT_FALSE(log.has("cannot be opened"));
    EXPECT_TRUE(page()->widget->isVisible());
    EXPECT_EQ(records(), "");
}

TEST_F(AdShow, ItIsPresentedFromWhatTheContainersAtTheRootShowFirst) {
    const auto left = std::make_shared<ViewController>();
    const auto right = std::make_shared<ViewController>();
    const auto tabs =
        std::make_shared<TabBarController>(std::vector<std::shared_ptr<ViewController>>{left, right});
    tabs->setSelectedIndex(1);
    const auto bottom = std::make_shared<ViewController>();
    const auto stack = std::make_shared<NavigationController>(bottom);
    stack->pushViewController(std::make_shared<ViewController>());
    const auto tabsInStack = std::make_shared<NavigationController>(tabs);
    tabsInStack->pushViewController(std::make_shared<ViewController>());
    using Controller = std::shared_ptr<ViewController>;
    const std::pair<Controller, Controller> kRoots[] = {{tabsInStack, right}, {tabs, right}, {stack, bottom}};
    for (const auto& [root, presenter] : kRoots) {
        Application::setRootViewController(root);
        const std::weak_ptr<VLAdShowUIController> made = showUnasked(ready("s", banner()));
        rest();
        ASSERT_FALSE(made.expired());
        EXPECT_EQ(made.lock()->presentingViewController(), presenter);
        command("close");
        EXPECT_TRUE(made.expired());
    }
    Application::setRootViewController(nullptr);
}

TEST_F(AdShow, TwoShowsAtOnceAndOneWhoseWindowGoesComeToAnEnd) {
    show(video());
    ready("t", video())->showWithOptions(nullptr);
    rest();
    EXPECT_EQ(players_.alive(), 2U);
    window_.hide();
}

TEST(AdShowOptions, TheOrientationIsAnsweredAsAMask) {
    const auto controller = std::make_shared<VLAdShowUIController>(nullptr);
    EXPECT_EQ(controller->supportedInterfaceOrientations(), 30U);
    controller->showOptions = std::make_shared<VLAdShowOptions>();
    std::vector<std::uint32_t> masks;
    for (std::int64_t option = 0; option <= 6; ++option) {
        controller->showOptions->setOrientation(option);
        masks.push_back(controller->supportedInterfaceOrientations());
    }
    EXPECT_THAT(masks, ElementsAre(30, 2, 8, 30, 16, 4, 30));
}

TEST(CallToAction, TheTypeMakesTheUrl) {
    EXPECT_EQ(callToActionUrl("sms", "+98 21", std::nullopt), "sms:+98%2021");
    EXPECT_EQ(callToActionUrl("sms", "12", "a b?"), "sms:12&body=a%20b%3F");
    EXPECT_EQ(callToActionUrl("tel", "12", "x"), "tel://12");
    EXPECT_EQ(callToActionUrl("market", "99", std::nullopt), "itms-apps://apps.apple.com/app/id99");
    for (const auto& type :
         {std::optional<std::string>("web"), std::optional<std::string>("Web"), std::optional<std::string>()})
        EXPECT_EQ(callToActionUrl(type, "http://x/", "y"), "http://x/");
    EXPECT_EQ(callToActionUrl("web", std::nullopt, std::nullopt), std::nullopt);
}

}  // namespace

}  // namespace velmora::test
