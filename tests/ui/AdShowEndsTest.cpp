#include "ui/AdShow.h"

#include <limits>
#include <ostream>

namespace velmora::test {

namespace {

/// What comes of a show.
struct Outcome {
    std::string told;
    std::string trackers;
    std::string record;
    std::string state;
    std::string readyAds;
    bool isGone = true;
};

/// A way in which a show ends.
struct End {
    const char* name;
    Outcome outcome;
    void (*happens)(AdShow& show);
};

void PrintTo(const End& end, std::ostream* out) { *out << end.name; }

class AdShowEnd : public AdShow, public testing::WithParamInterface<End> {};

constexpr auto kBoth = "other s";
const Outcome kSeenWhole{"true true", "0:start 2:firstQuartile 4:midpoint 6:thirdQuartile end:complete",
                         "100 % 8 s", "3/100", "other"};
const Outcome kOfNoLength{"false", "0:start end:complete", "100 % 30 s", "3/0", "other"};
const Outcome kBanner{"", "", "100 % 30 s", "3/100", "other"};

// A page that goes by itself ends nothing: what was shown stays ready, under an empty screen.
const Outcome kEmpty{"", "", "", "3", kBoth, false};
const Outcome kSkippedAndEmpty{"", "0:start 2:firstQuartile skip:skip", "", "3/0", kBoth, false};

void playToTheEnd(AdShow& show) {
    show.playVideo({0, 0.25, 2, 4, 6, 8});
    show.reachEnd();
}

void playAThird(AdShow& show, const std::shared_ptr<VLAdShowOptions>& options = nullptr) {
    show.playVideo({0, 2, 2.4}, options);
}

void letPageGo(AdShow& show, const std::function<void()>& goes) {
    ASSERT_TRUE(show.page()->widget->isVisible());
    goes();
    show.rest();
    EXPECT_FALSE(show.page()->widget && show.page()->widget->isVisible());
}

void sayDone(AdShow& show) {
    letPageGo(show, [&] { show.page()->finish("http://127.0.0.1:1/?VelmoraSuggestionIsDone"); });
}

void leavePage(AdShow& show) {
    letPageGo(show, [&] { show.shown()->webView->exitButtonTouched(); });
}

/// What has no whole second has no length that counts.
void endWithLength(AdShow& show, double length) {
    show.show(show.video());
    show.play(length);
    show.tick({0});
    show.reachEnd();
    EXPECT_EQ(show.told(), "");
    show.command("close");
}

TEST_P(AdShowEnd, IsToldTrackedAndRecorded) {
    GetParam().happens(*this);
    const auto& end = GetParam().outcome;
    EXPECT_EQ(told(), end.told);
    EXPECT_EQ(trackers(), end.trackers);
    EXPECT_EQ(records(), end.record);
    EXPECT_EQ(states(), "before=2 s=" + end.state + " behind=2");
    EXPECT_EQ(readyAds(), end.readyAds);
    EXPECT_EQ(controller_.expired(), end.isGone);
    EXPECT_EQ(inFront() == nullptr, end.isGone);
}

const End kEnds[] = {
    {"PlayedThenThePageCloses", kSeenWhole,
     [](AdShow& show) {
         playToTheEnd(show);
         EXPECT_TRUE(show.page()->widget->isVisible());
         show.command("close");
     }},
    {"PlayedThenThePageDismisses", kSeenWhole,
     [](AdShow& show) {
         playToTheEnd(show);
         show.command("dismiss");
     }},
    {"PlayedWithoutAPage",
     {"true true", "", "100 % 1.5 s", "3/100", "other"},
     [](AdShow& show) {
         show.showUnasked(AdShow::ready("s", R"({"ctaType": 1, "ctaUrl": "u"})"));
         show.rest();
         show.play(1.5);
         show.tick({1.5});
         show.reachEnd();
     }},
    {"PlayedOnAndOnAgain", kSeenWhole,
     [](AdShow& show) {
         playToTheEnd(show);
         for (int again = 0; again < 2; ++again) {
             show.replay();
             show.tick({0, 4, 8});
             show.reachEnd();
         }
         show.command("close");
     }},
    {"LeftInAReplay", kSeenWhole,
     [](AdShow& show) {
         playToTheEnd(show);
         show.replay();
         show.player()->length = 4;
         show.tick({1});
         show.leave();
     }},
    {"FailedInAReplay", kSeenWhole,
     [](AdShow& show) {
         playToTheEnd(show);
         show.replay();
         show.tick({1});
         show.fail();
     }},
    {"SkippedThenThePageDismisses",
     {"false", "0:start 2:firstQuartile skip:skip dismiss:complete", "0 % 8 s", "3/0", "other"},
     [](AdShow& show) {
         playAThird(show);
         show.skip();
         EXPECT_EQ(show.player()->count("pause"), 1);
         EXPECT_TRUE(show.page()->widget->isVisible());
         show.command("dismiss");
     }},
    {"SkippedWithoutAPage",
     {"false", "0:start 2.4:firstQuartile skip:skip last:complete", "0 % 8 s", "3/0", "other"},
     [](AdShow& show) {
         auto creative = show.video();
         creative.replace(creative.find(R"("type": 1)"), 9, R"("type": 2)");
         show.showUnasked(AdShow::ready("s", creative));
         show.rest();
         show.play();
         show.tick({0, 2.4});
         show.skip();
     }},
    {"SkippedThenThePageSaysThatItIsDone", kSkippedAndEmpty,
     [](AdShow& show) {
         playAThird(show);
         show.skip();
         sayDone(show);
     }},
    {"SkippedThenThePageIsLeft", kSkippedAndEmpty,
     [](AdShow& show) {
         playAThird(show);
         show.skip();
         leavePage(show);
     }},
    {"SkippedInAReplay",
     {"true true", kSeenWhole.trackers + " skip:skip", "100 % 8 s", "3/100", "other"},
     [](AdShow& show) {
         playToTheEnd(show);
         show.replay();
         show.tick({1});
         show.skip();
         EXPECT_TRUE(show.page()->widget->isVisible());
         show.command("close");
     }},
    {"SkippedTwiceAndThenFailed",
     {"false", "0:start 2:firstQuartile skip:skip", "", "3/0", kBoth},
     [](AdShow& show) {
         playAThird(show);
         show.shown()->videoView->skipButtonClicked();
         show.skip();
         show.fail();
     }},
    {"Left",
     {"false", "0:start 2:firstQuartile left:complete", "0 % 8 s", "3/0", "other"},
     [](AdShow& show) {
         playAThird(show);
         show.leave();
         EXPECT_EQ(show.told(), "false");
     }},
    {"LeftWithADialogToCome",
     {"", "0:start 2:firstQuartile", "", "3/0", kBoth, false},
     [](AdShow& show) {
         const auto options = std::make_shared<VLAdShowOptions>();
         options->setShowDialoged(true);
         playAThird(show, options);
         show.leave();
         EXPECT_EQ(show.shown()->presentedViewController(), nullptr);
     }},
    {"ThePageClosesBehindTheVideo",
     {"false", "0:start 2:firstQuartile close:complete", "0 % 8 s", "3/0", "other"},
     [](AdShow& show) {
         playAThird(show);
         const auto player = show.player();
         show.command("close");
         EXPECT_EQ(player->count("pause"), 1);
     }},
    {"FailedBeforeItHadALength",
     {"true", "", "", "3", kBoth},
     [](AdShow& show) {
         show.show(show.video());
         show.fail();
     }},
    {"FailedWhenItHadALength",
     {"false", "0:start 2:firstQuartile", "", "3/0", kBoth},
     [](AdShow& show) {
         playAThird(show);
         show.fail();
     }},
    {"FailedAndItsPlayerDismissedFirst",
     {"false", "0:start 2:firstQuartile", "", "3/0", kBoth},
     [](AdShow& show) {
         playAThird(show);
         const auto controller = show.shown();
         controller->vlAVPlayerViewControllerCouldNotLoadVideoWithUrl(*controller->videoView, std::nullopt);
         controller->vlOnAVPlayerDismissed(false);
         controller->vlWebViewBridgeDismiss();
         show.rest();
     }},
    {"WithoutASource",
     {"true", "", "", "3", kBoth},
     [](AdShow& show) {
         const auto ad = AdShow::ready("s", show.video());
         ad->getRequestOptions()->setCacheType(7);
         show.show(ad);
         EXPECT_EQ(show.players_.made(), 0U);
     }},
    {"OfUnknownLength", kOfNoLength,
     [](AdShow& show) { endWithLength(show, std::numeric_limits<double>::quiet_NaN()); }},
    {"OfLengthZero", kOfNoLength, [](AdShow& show) { endWithLength(show, 0); }},
    {"OfLessThanASecond", kOfNoLength, [](AdShow& show) { endWithLength(show, 0.9); }},
    {"OfABannerThatCloses", kBanner,
     [](AdShow& show) {
         show.show(AdShow::banner());
         EXPECT_TRUE(show.page()->widget->isVisible());
         show.command("close");
     }},
    {"OfABannerThatDismisses", kBanner,
     [](AdShow& show) {
         show.show(AdShow::banner());
         show.command("dismiss");
     }},
    {"OfABannerThatSaysThatItIsDone", kEmpty,
     [](AdShow& show) {
         show.show(AdShow::banner());
         sayDone(show);
     }},
    {"OfABannerThatIsLeft", kEmpty,
     [](AdShow& show) {
         show.show(AdShow::banner());
         leavePage(show);
     }},
    {"OfABannerWhoseStartIsKnown",
     {"", "", "100 % 100 s", "3/100", "other"},
     [](AdShow& show) {
         show.show(AdShow::banner());
         show.shown()->webViewStartTime = 5;
         show.command("close");
     }},
    {"WithoutACallToAction",
     {"", "", "", "3/100", "other"},
     [](AdShow& show) {
         show.show(AdShow::ready("s", AdShow::banner(), ""));
         show.command("close");
     }},
};

INSTANTIATE_TEST_SUITE_P(Ends, AdShowEnd, testing::ValuesIn(kEnds),
                         [](const auto& one) { return one.param.name; });

}  // namespace

}  // namespace velmora::test
