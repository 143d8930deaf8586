#include "ui/VLAdShowUIController.h"

#include "core/VLLog.h"
#include "model/VLDirectCreativeModel.h"
#include "model/VLProgressTrackerModel.h"
#include "model/VLVastTrackingData.h"
#include "support/LogCapture.h"
#include "support/Opener.h"
#include "support/TemporaryDirectory.h"
#include "ui/AdShow.h"
#include "ui/CallToAction.h"
#include "ui/ProgressOffset.h"
#include "ui/VLActivityIndicatorView.h"

#include <filesystem>
#include <fstream>

#include <QScreen>
#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using platform::Application;
using platform::NavigationController;
using platform::TabBarController;
using platform::ViewController;
using testing::ElementsAre;
using testing::SizeIs;

TEST_F(AdShow, QuartilesGoWithTheTickThatReachesThemEachOnceAndInTheirOrder) {
    const struct {
        std::vector<double> ticks;
        const char* trackers;
    } kPlaybacks[] = {
        {{0, 1.75, 2, 3.75, 4, 5.75, 6, 8}, "0:start 2:firstQuartile 4:midpoint 6:thirdQuartile"},
        {{1.99, 3.99, 5.99, 7.99}, "1.99:start 3.99:firstQuartile 5.99:midpoint 7.99:thirdQuartile"},
        {{6.4, 7.2}, "6.4:start+firstQuartile+midpoint+thirdQuartile"},
        {{4, 2, 6.4}, "4:start+firstQuartile+midpoint 6.4:thirdQuartile"},
    };
    std::string before;
    for (const auto& [ticks, expected] : kPlaybacks) {
        show(video());
        play();
        tick(ticks);
        before += (before.empty() ? "" : " ") + std::string(expected);
        EXPECT_EQ(trackers(), before);
        fail();
    }
}

TEST_F(AdShow, WhatWasSentOfASuggestionIsNotSentAgainByItsNextShow) {
    const auto ad = ready("s", video());
    show(ad);
    play();
    tick({0, 2});
    skip();
    EXPECT_FALSE(platform::asBool(ad->state().mAd.get()->doneReported.get()));
    command("close");
    const std::string first = "0:start 2:firstQuartile skip:skip close:complete";
    EXPECT_EQ(trackers(), first);
    EXPECT_TRUE(platform::asBool(ad->state().mAd.get()->doneReported.get()));
    show(ad);
    play();
    tick({0, 2, 4});
    skip();
    command("close");
    EXPECT_EQ(trackers(), first + " 4:midpoint");
}

TEST_F(AdShow, AnEventWithoutTrackersCountsAsReportedOnlyWhenItIsASkipOrTheEnd) {
    const auto ad =
        ready("s", R"({"ctaType": 3, "ctaUrl": "u", "action": {"type": 1}, "vastTrackingData": {}})");
    show(ad);
    play();
    tick({8});
    skip();
    command("close");
    const auto data = ad->state().mAd.get()->creative->vastTrackingData;
    for (const auto* flag : {&data->isStartTrackerReported, &data->isFirstQuartileTrackerReported,
                             &data->isMidpointReported, &data->isThirdQuartileTrackerReported})
        EXPECT_FALSE(platform::asBool(flag->get()));
    EXPECT_TRUE(platform::asBool(data->isSkipTrackerReported.get()));
    EXPECT_TRUE(platform::asBool(data->isCompleteTrackerReported.get()));
}

TEST_F(AdShow, EachMuteAndUnmuteIsReported) {
    show(video());
    play();
    for (const char* step : {"1", "2", "3", "4"}) {
        shown()->videoView->muteButtonClicked();
        tick({std::atof(step)});
    }
    EXPECT_EQ(trackers(), "1:mute+start 2:unmute+firstQuartile 3:mute 4:unmute+midpoint");
}

TEST_F(AdShow, TrackersThatAreNoneAreHarmlessAndOffsetsGoByTheirForms) {
    show(ready("s", R"({"ctaType": 1, "ctaUrl": "u", "action": {"type": 1}, "vastTrackingData":
        {"startTrackerUrls": [7, null, "", "no url", "file:///etc/passwd", ")" +
                        server_.url("/start") + R"("], "muteTrackerUrls": "x"}})"));
    const auto data = shown()->ad->creative->vastTrackingData;
    const auto offset = [&](const Property& first, const std::string& event) {
        auto tracker = std::make_shared<VLProgressTrackerModel>();
        tracker->first = first;
        tracker->second = Property(server_.url("/" + event));
        return tracker;
    };
    data->progressTrackingUrls.set(makeList<VLProgressTrackerModel>(
        {offset(std::nullopt, "none"), offset(Property("00:00:05.500"), "ms"),
         offset(Property("00:00:05"), "s"), offset(Property("0%"), "zero"),
         offset(Property("25%"), "percent"), offset(Property("soon"), "text"), nullptr}));
    play();
    shown()->videoView->muteButtonClicked();
    tick({0});
    EXPECT_THAT(*data->progressTrackingUrls.get(), SizeIs(5));
    tick({5.5, 5.75, 6});
    EXPECT_THAT(*data->progressTrackingUrls.get(), SizeIs(3));
    EXPECT_EQ(trackers(), "0:start 5.5:zero 5.75:ms");
}

TEST_F(AdShow, AnAnswerThatComesDuringAShowKeepsItsList) {
    show(video());
    play();
    tick({1});
    setStates({"new", "s"});
    tick({2});
    EXPECT_EQ(states(), "new=2 s=3/0");
    setStates({"newer"});
    tick({8});
    EXPECT_EQ(states(), "newer=2");
    reachEnd();
    command("close");
    EXPECT_EQ(states(), "newer=2");
    EXPECT_EQ(records(), "100 % 8 s");
}

TEST_F(AdShow, WhatHasPassedIsKeptInTheListThatIsThereAtTheEnd) {
    const std::function<void()> kEnds[] = {[this] { leave(); }, [this] { fail(); },
                                           [this] {
                                               reachEnd();
                                               command("close");
                                           }};
    for (const auto& end : kEnds) {
        show(video());
        play(0.5);
        tick({0});
        setStates({"s", "new"});
        end();
        EXPECT_EQ(states(), "s=3/0 new=2");
    }
    // Of a video that was seen whole all is said with its end.
    show(video());
    play();
    tick({8});
    reachEnd();
    setStates({"s", "new"});
    command("close");
    EXPECT_EQ(states(), "s=2 new=2");
}

TEST_F(AdShow, FiguresComeFromTheFirstTickOnAndOnlyUntilTheFirstEnd) {
    show(video());
    play();
    EXPECT_EQ(states(), "before=2 s=3 behind=2");
    tick({0});
    EXPECT_EQ(states(), "before=2 s=3/0 behind=2");
    EXPECT_EQ(shown()->doneSeconds, Property(8.0));
    tick({7.99});
    EXPECT_EQ(states(), "before=2 s=3/0 behind=2");
    tick({8});
    EXPECT_EQ(states(), "before=2 s=3/1 behind=2");
    reachEnd();
    replay();
    tick({1});
    EXPECT_EQ(states(), "before=2 s=3/100 behind=2");
    EXPECT_EQ(shown()->donePercentage, Property(100));
    EXPECT_FALSE(shown()->videoDuration) << "the player has its own";
    EXPECT_EQ(shown()->spinner, nullptr) << "the player has its own";
}

TEST_F(AdShow, TheSkipButtonIsThereOnlyWithAValueInItsRecord) {
    const struct {
        const char* skip;
        bool isHidden;
    } kSkips[] = {{R"("skipStartPercentage": {"type": 1, "skipStartPercentage": 0.25}, )", false},
                  {R"("skipStartPercentage": {"type": 1}, )", true},
                  {"", true}};
    for (const auto& [skip, isHidden] : kSkips) {
        show(video(skip));
        EXPECT_EQ(shown()->videoView->isSkipButtonVisible(), isHidden) << skip;
        play();
        tick({8});
        EXPECT_EQ(shown()->videoView->isSkipButtonVisible(), isHidden) << skip;
        if (!isHidden) {
            // A creative that became a page hides it when its part has passed.
            shown()->ad->creative->ctaType = Property(2);
            tick({2});
            EXPECT_FALSE(shown()->videoView->isSkipButtonVisible());
            tick({2.25});
            EXPECT_TRUE(shown()->videoView->isSkipButtonVisible());
        }
        leave();
    }
}

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
    std::ofstream(file) << "video";
    const auto ad = ready("s", video());
    ad->getRequestOptions()->setCacheType(VLCacheType::cached);
    ad->state().setVideoFilePath(file.string());
    show(ad);
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

    show(video());
    play();
    tick({8});
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
    std::ofstream(file) << "video";
    const auto ad = ready("s", video());
    ad->getRequestOptions()->setCacheType(VLCacheType::cached);
    ad->state().setVideoFilePath(file.string());
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

// An application often shows its next ad when it is told of the end of one.
TEST_F(AdShow, TheNextAdThatIsShownFromTheCallbackStays) {
    const struct {
        const char* what;
        std::function<void()> ends;
    } kEndings[] = {
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
    const struct {
        std::shared_ptr<ViewController> root;
        std::shared_ptr<ViewController> presenter;
    } kRoots[] = {{tabsInStack, right}, {tabs, right}, {stack, bottom}};
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
    const auto controller = std::make_shared<VLAdShowUIController>();
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

TEST(ProgressOffset, EachFormComparesInItsOwnWay) {
    EXPECT_FALSE(isProgressOffsetDue("00:00:05.500", 0, 5.5F));
    EXPECT_TRUE(isProgressOffsetDue("00:00:05.500", 0, 5.75F));
    EXPECT_TRUE(isProgressOffsetDue("01:01:01.001", 0, 3661.25F));
    EXPECT_FALSE(isProgressOffsetDue("00:00:05", 0, 5000));
    EXPECT_TRUE(isProgressOffsetDue("00:00:05", 0, 5000.5F));
    EXPECT_TRUE(isProgressOffsetDue("0%", 0.01F, 0));
    EXPECT_FALSE(isProgressOffsetDue("0%", 0, 0));
    EXPECT_FALSE(isProgressOffsetDue("1%", 1, 0));
    for (const auto& text : {std::string(), std::string("%"), std::string("-1%"), std::string("00:00:00,000"),
                             std::string("0:00:00"), std::string(1'000'000, '9') + "%"})
        EXPECT_FALSE(isProgressOffsetDue(text, 1, 1e9F)) << text.substr(0, 20);
}

}  // namespace

}  // namespace velmora::test
