#include "ui/VLAdShowUIController.h"

#include "core/VLLog.h"
#include "core/VelmoraAdState.h"
#include "model/VLAdSuggestion.h"
#include "model/VLAdSuggestionFinalState.h"
#include "model/VLCachedVelmoraAds.h"
#include "model/VLDefaults.h"
#include "model/VLDirectCreativeModel.h"
#include "model/VLDoneAdSuggestion.h"
#include "model/VLFinalStatesModel.h"
#include "model/VLProgressTrackerModel.h"
#include "model/VLVastTrackingData.h"
#include "platform/Application.h"
#include "platform/UserDefaults.h"
#include "support/EventLoop.h"
#include "support/LogCapture.h"
#include "support/Records.h"
#include "support/ScriptedPage.h"
#include "support/ScriptedPlayer.h"
#include "support/ScriptedServer.h"
#include "ui/CallToAction.h"
#include "ui/ProgressOffset.h"
#include "ui/VLAVPlayerViewController.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <limits>
#include <thread>

#include <QApplication>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <velmora/velmora.h>

namespace velmora::test {

namespace {

using platform::Application;
using platform::PlayerStatus;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Ends = std::vector<bool>;

/// An application with a window, a scripted player and page behind the library, and a server for trackers.
class AdShow : public testing::Test {
protected:
    AdShow() {
        window_.show();
        for (const char* key : {"finalstates", "cachedAds", "cachedDoneAdSuggestions"})
            platform::UserDefaults::standard().removeObjectForKey(key);
        Velmora::setAdShowFinishedCallback(
            [this](const auto&, bool completed) { ends_.push_back(completed); });
    }

    ~AdShow() override {
        Velmora::setAdShowFinishedCallback(nullptr);
        for (auto* window : QApplication::topLevelWidgets()) window->close();
        EXPECT_TRUE(runUntil([&] { return controller_.expired(); }));
        EXPECT_TRUE(runUntil([&] { return players_.alive() == 0; }));
        EXPECT_TRUE(std::all_of(pages_.made().begin(), pages_.made().end(),
                                [](const auto& page) { return page->widget.isNull(); }));
    }

    std::string tracker(const std::string& event) { return "[\"" + server_.url("/" + event) + "\"]"; }

    std::shared_ptr<VelmoraAd> makeAd(const std::string& creative, std::int64_t cacheType = 2) {
        auto ad = std::make_shared<VelmoraAd>();
        ad->state().setAd(read<VLAdSuggestion>(
            R"({"suggestionId": "s", "callToActionId": "c", "creative": )" + creative + "}"));
        auto options = std::make_shared<VLAdRequestOptions>();
        options->setCacheType(cacheType);
        ad->state().setAdRequestOptions(options);
        auto states = std::make_shared<VLFinalStatesModel>();
        states->setStates(makeList<VLAdSuggestionFinalState>(
            {std::make_shared<VLAdSuggestionFinalState>(Property("s"), 2, Property(Dictionary()))}));
        VLDefaults::setFinalStates(states);
        VLDefaults::cacheNewAd(ad);
        return ad;
    }

    std::shared_ptr<VelmoraAd> makeVideo(int type = 3, const std::string& more = "") {
        return makeAd(R"({"ctaType": )" + std::to_string(type) + R"(, "ctaUrl": "http://127.0.0.1:1/v.mp4",
            "action": {"type": 1, "actionUrl": "http://127.0.0.1:1/page"}, )" +
                      more + R"("vastTrackingData": {"startTrackerUrls": )" + tracker("start") +
                      R"(, "firstQuartileTrackerUrls": )" + tracker("first") +
                      R"(, "midpointTrackerUrls": )" + tracker("mid") + R"(, "thirdQuartileTrackerUrls": )" +
                      tracker("third") + R"(, "completeTrackerUrls": )" + tracker("complete") +
                      R"(, "muteTrackerUrls": )" + tracker("mute") + R"(, "unmuteTrackerUrls": )" +
                      tracker("unmute") + R"(, "skipTrackerUrls": )" + tracker("skip") + "}}");
    }

    /// Shows it, and returns when its player or its page is there.
    std::shared_ptr<VLAdShowUIController> show(const std::shared_ptr<VelmoraAd>& ad,
                                               const std::shared_ptr<VLAdShowOptions>& options = nullptr) {
        // From any thread.
        std::thread([&] { ad->showWithOptions(options); }).join();
        std::shared_ptr<VLAdShowUIController> shown;
        EXPECT_TRUE(runUntil([&] {
            const auto presented = Application::rootViewController()->presentedViewController();
            const auto navigation = std::dynamic_pointer_cast<platform::NavigationController>(presented);
            if (navigation)
                shown =
                    std::dynamic_pointer_cast<VLAdShowUIController>(navigation->viewControllers().front());
            return shown && shown->presentedViewController();
        }));
        controller_ = shown;
        EXPECT_TRUE(runUntil([&] { return shown->presentedViewController()->view()->y() == 0; }));
        return shown;
    }

    void play(double duration = 8) {
        players_.last()->length = duration;
        players_.last()->become(PlayerStatus::readyToPlay);
        EXPECT_TRUE(runUntil([&] { return players_.last()->count("play") > 0; }));
    }

    bool isOver() {
        return runUntil([&] { return controller_.expired(); });
    }

    bool shows(const std::shared_ptr<platform::ViewController>& which) {
        const auto shown = controller_.lock();
        return runUntil([&] { return which && shown->presentedViewController() == which; });
    }

    /// What the server was asked for, once nothing more comes.
    std::vector<std::string> tracked(std::size_t count) {
        EXPECT_TRUE(runUntil([&] { return server_.seen().size() >= count; }));
        std::vector<std::string> targets;
        for (const auto& request : server_.seen()) targets.push_back(request.target);
        return targets;
    }

    static std::string passedDuration() {
        const auto state = VLDefaults::getFinalStates()->getStates()->front();
        return platform::writeJson(dictionaryOf(*state)).value();
    }

    QWidget window_;
    UseScriptedPlayers players_;
    ScriptedPages pages_;
    Ends ends_;
    std::weak_ptr<VLAdShowUIController> controller_;
    ScriptedServer server_{[](const SeenRequest&) { return Script::answer(200, ""); }};
};

TEST_F(AdShow, AVideoPlayedToItsEndIsTrackedRecordedAndFollowedByItsPage) {
    const auto ad = makeVideo();
    {
        const auto shown = show(ad);
        EXPECT_EQ(players_.last()->source, "url http://127.0.0.1:1/v.mp4");
        EXPECT_THAT(pages_.made().front()->loads, ElementsAre("http://127.0.0.1:1/page"));
        EXPECT_THAT(passedDuration(), testing::HasSubstr(R"("state":3)"));
        play();
        for (const double time : {0.0, 0.25, 2.0, 2.25, 4.0, 6.0, 8.0}) players_.last()->tick(time);
        EXPECT_THAT(passedDuration(), testing::HasSubstr(R"("passedDuration":"1")"));
        players_.last()->reachEnd();
        EXPECT_EQ(ends_, Ends{true});
        EXPECT_TRUE(shows(shown->webView));
    }
    EXPECT_THAT(tracked(5), testing::UnorderedElementsAre("/start", "/first", "/mid", "/third", "/complete"));
    const auto done = VLDefaults::getDoneAdSuggestions();
    ASSERT_THAT(*done, SizeIs(1));
    EXPECT_EQ(
        written(*done->front()),
        valueOf(
            R"({"suggestionId": "s", "callToActionId": "c", "donePercentage": 100, "doneSeconds": 8.0})"));
    EXPECT_THAT(passedDuration(), testing::HasSubstr(R"("passedDuration":"100")"));
    EXPECT_THAT(*VLDefaults::getCachedAds()->cachedVelmoraAds.get(), IsEmpty());

    // The page closes: the manager is told once more.
    EXPECT_FALSE(pages_.made().front()->navigate("velmora://close"));
    EXPECT_TRUE(isOver());
    EXPECT_EQ(ends_, (Ends{true, true}));
    EXPECT_THAT(tracked(5), SizeIs(5));
    EXPECT_EQ(Application::rootViewController()->presentedViewController(), nullptr);
}

TEST_F(AdShow, AReplayFromThePageTracksNothingAgain) {
    const auto ad = makeVideo();
    {
        const auto shown = show(ad);
        play();
        players_.last()->tick(8);
        players_.last()->reachEnd();
        EXPECT_TRUE(shows(shown->webView));
        EXPECT_TRUE(runUntil([&] { return shown->webView->view()->y() == 0; }));
        // Clicked twice.
        EXPECT_FALSE(pages_.made().front()->navigate("velmora://replay"));
        EXPECT_FALSE(pages_.made().front()->navigate("velmora://replay"));
        EXPECT_TRUE(shows(shown->videoView));
        EXPECT_EQ(players_.made(), 1U);
        EXPECT_GE(players_.last()->count("seek 0"), 1);
        players_.last()->tick(4);
        shown->videoView->muteButtonClicked();
        shown->videoView->muteButtonClicked();
        shown->videoView->muteButtonClicked();
        EXPECT_TRUE(runUntil([&] { return shown->videoView->view()->y() == 0; }));
        shown->videoView->exitButtonTouched();
    }
    EXPECT_TRUE(isOver());
    EXPECT_EQ(ends_, (Ends{true, true}));
    EXPECT_THAT(tracked(8), testing::UnorderedElementsAre("/start", "/first", "/mid", "/third", "/complete",
                                                          "/mute", "/unmute", "/mute"));
    EXPECT_THAT(*VLDefaults::getDoneAdSuggestions(), SizeIs(1));
}

TEST_F(AdShow, ASkippedVideoIsFollowedByItsPageAndCountsAsLeft) {
    const auto ad = makeVideo(3, R"("skipStartPercentage": {"type": 1, "skipStartPercentage": 0.25}, )");
    {
        const auto shown = show(ad);
        EXPECT_FALSE(shown->videoView->isSkipButtonVisible());
        play();
        players_.last()->tick(1);
        shown->videoView->skipButtonClicked();
        EXPECT_EQ(players_.last()->count("pause"), 1);
        EXPECT_TRUE(shows(shown->webView));
        EXPECT_TRUE(runUntil([&] { return shown->webView->view()->y() == 0; }));
        EXPECT_FALSE(pages_.made().front()->navigate("velmora://dismiss"));
    }
    EXPECT_TRUE(isOver());
    EXPECT_EQ(ends_, Ends{false});
    EXPECT_THAT(tracked(3), testing::UnorderedElementsAre("/start", "/skip", "/complete"));
}

TEST_F(AdShow, LeavingAVideoEndsTheShowUnlessADialogIsAskedFor) {
    const auto options = std::make_shared<VLAdShowOptions>();
    for (const bool dialog : {false, true}) {
        ends_.clear();
        options->setShowDialoged(dialog);
        const auto ad = makeVideo();
        {
            const auto shown = show(ad, options);
            play();
            players_.last()->tick(1);
            shown->videoView->exitButtonTouched();
            EXPECT_TRUE(runUntil([&] { return !shown->presentedViewController(); }));
        }
        if (dialog) {
            EXPECT_EQ(ends_, Ends());
            EXPECT_FALSE(controller_.expired());
        } else {
            EXPECT_TRUE(isOver());
            EXPECT_EQ(ends_, Ends{false});
        }
    }
}

TEST_F(AdShow, AVideoThatCannotBeLoadedCountsAsCompletedUnlessItHadALength) {
    for (const bool hadLength : {false, true}) {
        ends_.clear();
        const auto ad = makeVideo();
        {
            const auto shown = show(ad);
            if (hadLength) {
                play();
                players_.last()->tick(1);
            }
            players_.last()->become(PlayerStatus::failed);
        }
        EXPECT_TRUE(isOver());
        EXPECT_EQ(ends_.front(), !hadLength);
        EXPECT_THAT(ends_, SizeIs(1));
    }
}

TEST_F(AdShow, AVideoOfUnknownLengthIsRecordedButNotTold) {
    const auto ad = makeVideo();
    {
        const auto shown = show(ad);
        play(std::numeric_limits<double>::quiet_NaN());
        players_.last()->tick(1);
        players_.last()->reachEnd();
        EXPECT_EQ(ends_, Ends());
        EXPECT_EQ(shown->doneSeconds, Property(30));
        EXPECT_FALSE(platform::asBool(shown->isVideoCompleted));
        EXPECT_TRUE(shows(shown->webView));
        EXPECT_TRUE(runUntil([&] { return shown->webView->view()->y() == 0; }));
        EXPECT_FALSE(pages_.made().front()->navigate("velmora://close"));
    }
    EXPECT_TRUE(isOver());
    EXPECT_EQ(ends_, Ends{false});
}

TEST_F(AdShow, ABannerIsRecordedAndNeverToldToTheManager) {
    for (const auto* command : {"velmora://close", "velmora://dismiss"}) {
        platform::UserDefaults::standard().removeObjectForKey("cachedDoneAdSuggestions");
        const auto ad = makeAd(R"({"ctaType": 2, "ctaUrl": "http://127.0.0.1:1/banner"})");
        {
            const auto shown = show(ad);
            EXPECT_EQ(shown->videoView, nullptr);
            EXPECT_TRUE(shows(shown->webView));
        }
        EXPECT_FALSE(pages_.made().back()->navigate(command));
        EXPECT_TRUE(isOver());
        EXPECT_EQ(ends_, Ends());
        const auto done = VLDefaults::getDoneAdSuggestions();
        ASSERT_THAT(*done, SizeIs(1));
        EXPECT_EQ(written(*done->front()), valueOf(R"({"suggestionId": "s", "callToActionId": "c",
                                                       "donePercentage": 100, "doneSeconds": 30})"));
    }
}

TEST_F(AdShow, ACachedVideoPlaysItsFileAndOtherTypesNothing) {
    auto ad = makeVideo();
    ad->getRequestOptions()->setCacheType(1);
    const auto file = std::filesystem::temp_directory_path() / "velmora-test-video.mp4";
    std::ofstream(file) << "video";
    ad->state().setVideoFilePath(file.string());
    {
        const auto shown = show(ad);
        EXPECT_EQ(players_.last()->source, "file " + file.string());
        players_.last()->become(PlayerStatus::failed);
    }
    EXPECT_TRUE(isOver());
    std::filesystem::remove(file);

    ad = makeVideo();
    ad->getRequestOptions()->setCacheType(7);
    const auto shown = show(ad);
    EXPECT_EQ(players_.made(), 1U);
    EXPECT_EQ(shown->videoPathOrUrl, std::nullopt);
}

TEST_F(AdShow, WhatMayNotBeShownIsLoggedAndNotShown) {
    VLLogger::setShallLog(true);
    const LogCapture log;
    const auto expired = makeVideo(3);
    expired->getRequestOptions()->setCacheType(1);
    expired->showWithOptions(nullptr);
    EXPECT_TRUE(log.has("Ad is Expired/Invalid"));
    makeAd(R"({"ctaType": 3, "ctaUrl": "u", "action": {"type": 2}})")->showWithOptions(nullptr);
    EXPECT_TRUE(log.has("Ad type is not supported with this version of sdk."));
    EXPECT_FALSE(
        runUntil([&] { return Application::rootViewController()->presentedViewController() != nullptr; },
                 std::chrono::milliseconds(100)));

    // A handle without an ad passes, and leaves the screen empty until it is closed.
    std::make_shared<VelmoraAd>()->showWithOptions(nullptr);
    EXPECT_TRUE(
        runUntil([&] { return Application::rootViewController()->presentedViewController() != nullptr; }));
}

TEST_F(AdShow, TrackersThatAreNoneAreHarmlessAndOffsetsGoByTheirForms) {
    const auto ad = makeAd(R"({"ctaType": 1, "ctaUrl": "u", "action": {"type": 1}, "vastTrackingData":
        {"startTrackerUrls": [7, null, "", "no url", "file:///etc/passwd"], "muteTrackerUrls": "x"}})");
    const auto shown = show(ad);
    const auto data = shown->ad->creative->vastTrackingData;
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
    shown->videoView->muteButtonClicked();
    players_.last()->tick(0);
    EXPECT_THAT(*data->progressTrackingUrls.get(), SizeIs(5));
    players_.last()->tick(5.5);
    players_.last()->tick(5.75);
    EXPECT_THAT(*data->progressTrackingUrls.get(), SizeIs(3));
    EXPECT_THAT(tracked(2), testing::UnorderedElementsAre("/ms", "/zero"));
}

TEST_F(AdShow, TwoShowsAtOnceAndOneWhoseWindowGoesComeToAnEnd) {
    show(makeVideo());
    const auto second = makeVideo();
    second->showWithOptions(nullptr);
    EXPECT_TRUE(runUntil([&] { return players_.alive() == 2; }));
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
