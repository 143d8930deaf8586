#include "model/VLDirectCreativeModel.h"
#include "model/VLProgressTrackerModel.h"
#include "model/VLVastTrackingData.h"
#include "ui/AdShow.h"
#include "ui/ProgressOffset.h"
#include "ui/VLActivityIndicatorView.h"

#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using testing::SizeIs;

TEST_F(AdShow, QuartilesGoWithTheTickThatReachesThemEachOnceAndInTheirOrder) {
    const std::pair<std::vector<double>, const char*> kPlaybacks[] = {
        {{0, 1.75, 2, 3.75, 4, 5.75, 6, 8}, "0:start 2:firstQuartile 4:midpoint 6:thirdQuartile"},
        {{1.99, 3.99, 5.99, 7.99}, "1.99:start 3.99:firstQuartile 5.99:midpoint 7.99:thirdQuartile"},
        {{6.4, 7.2}, "6.4:start+firstQuartile+midpoint+thirdQuartile"},
        {{4, 2, 6.4}, "4:start+firstQuartile+midpoint 6.4:thirdQuartile"},
    };
    std::string before;
    for (const auto& [ticks, expected] : kPlaybacks) {
        playVideo(ticks);
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
    const auto ad = ready("s", R"({"ctaType": 1, "ctaUrl": "u", "action": {"type": 1}, "vastTrackingData":
        {"startTrackerUrls": [7, null, "", "no url", "file:///etc/passwd", ")" +
                                   server_.url("/start") + R"("], "muteTrackerUrls": "x"}})");
    const auto data = ad->state().mAd.get()->creative->vastTrackingData;
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
    show(ad);
    play();
    shown()->videoView->muteButtonClicked();
    tick({0});
    EXPECT_THAT(*data->progressTrackingUrls.get(), SizeIs(5));
    tick({5.5, 5.75, 6});
    EXPECT_THAT(*data->progressTrackingUrls.get(), SizeIs(3));
    EXPECT_EQ(trackers(), "0:start 5.5:zero 5.75:ms");
}

TEST_F(AdShow, AnAnswerThatComesDuringAShowKeepsItsList) {
    playVideo({1});
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
    for (const auto end : {&AdShow::leave, &AdShow::fail, &AdShow::reachEnd}) {
        show(video());
        play(0.5);
        tick({0});
        setStates({"s", "new"});
        (this->*end)();
        if (inFront()) command("close");
        EXPECT_EQ(states(), "s=3/0 new=2");
    }
    // Of a video that was seen whole all is said with its end.
    playVideo({8});
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
    EXPECT_EQ(shown()->doneSeconds, Seconds(8.0));
    tick({7.99});
    EXPECT_EQ(states(), "before=2 s=3/0 behind=2");
    tick({8});
    EXPECT_EQ(states(), "before=2 s=3/1 behind=2");
    reachEnd();
    replay();
    tick({1});
    EXPECT_EQ(states(), "before=2 s=3/100 behind=2");
    EXPECT_EQ(shown()->donePercentage, 100);
    EXPECT_FALSE(shown()->videoDuration) << "the player has its own";
    EXPECT_EQ(shown()->spinner, nullptr) << "the player has its own";
}

TEST_F(AdShow, TheSkipButtonIsThereOnlyWithAValueInItsRecord) {
    const std::pair<const char*, bool> kSkips[] = {
        {R"("skipStartPercentage": {"type": 1, "skipStartPercentage": 0.25}, )", false},
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
