#include "ui/AdShow.h"

#include <ostream>

namespace velmora::test {

namespace {

/// A way in which a show ends, and what comes of it.
struct End {
    const char* name;
    void (*happens)(AdShow& show);
    std::string told;
    std::string trackers;
    std::string record;
    std::string state;
    std::string readyAds;
    bool isGone = true;
};

void PrintTo(const End& end, std::ostream* out) { *out << end.name; }

class AdShowEnd : public AdShow, public testing::WithParamInterface<End> {};

constexpr auto kQuartiles = "0:start 2:firstQuartile 4:midpoint 6:thirdQuartile";
constexpr auto kBoth = "other s";

void playToTheEnd(AdShow& show) {
    show.show(show.video());
    show.play();
    show.tick({0, 0.25, 2, 4, 6, 8});
    show.reachEnd();
}

void playAThird(AdShow& show, const std::shared_ptr<VLAdShowOptions>& options = nullptr) {
    show.show(show.video(), options);
    show.play();
    show.tick({0, 2, 2.4});
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
    const auto& end = GetParam();
    end.happens(*this);
    EXPECT_EQ(told(), end.told);
    EXPECT_EQ(trackers(), end.trackers);
    EXPECT_EQ(records(), end.record);
    EXPECT_EQ(states(), "before=2 s=" + end.state + " behind=2");
    EXPECT_EQ(readyAds(), end.readyAds);
    EXPECT_EQ(controller_.expired(), end.isGone);
    EXPECT_EQ(inFront() == nullptr, end.isGone);
}

const End kEnds[] = {
    {.name = "PlayedThenThePageCloses",
     .happens =
         [](AdShow& show) {
             playToTheEnd(show);
             EXPECT_TRUE(show.page()->widget->isVisible());
             show.command("close");
         },
     .told = "true true",
     .trackers = std::string(kQuartiles) + " end:complete",
     .record = "100 % 8 s",
     .state = "3/100",
     .readyAds = "other"},
    {.name = "PlayedThenThePageDismisses",
     .happens =
         [](AdShow& show) {
             playToTheEnd(show);
             show.command("dismiss");
         },
     .told = "true true",
     .trackers = std::string(kQuartiles) + " end:complete",
     .record = "100 % 8 s",
     .state = "3/100",
     .readyAds = "other"},
    {.name = "PlayedWithoutAPage",
     .happens =
         [](AdShow& show) {
             show.showUnasked(AdShow::ready("s", R"({"ctaType": 1, "ctaUrl": "u"})"));
             show.rest();
             show.play(1.5);
             show.tick({1.5});
             show.reachEnd();
         },
     .told = "true true",
     .trackers = "",
     .record = "100 % 1.5 s",
     .state = "3/100",
     .readyAds = "other"},
    {.name = "PlayedOnAndOnAgain",
     .happens =
         [](AdShow& show) {
             playToTheEnd(show);
             for (int again = 0; again < 2; ++again) {
                 show.replay();
                 show.tick({0, 4, 8});
                 show.reachEnd();
             }
             show.command("close");
         },
     .told = "true true",
     .trackers = std::string(kQuartiles) + " end:complete",
     .record = "100 % 8 s",
     .state = "3/100",
     .readyAds = "other"},
    {.name = "LeftInAReplay",
     .happens =
         [](AdShow& show) {
             playToTheEnd(show);
             show.replay();
             show.player()->length = 4;
             show.tick({1});
             show.leave();
         },
     .told = "true true",
     .trackers = std::string(kQuartiles) + " end:complete",
     .record = "100 % 8 s",
     .state = "3/100",
     .readyAds = "other"},
    {.name = "FailedInAReplay",
     .happens =
         [](AdShow& show) {
             playToTheEnd(show);
             show.replay();
             show.tick({1});
             show.fail();
         },
     .told = "true true",
     .trackers = std::string(kQuartiles) + " end:complete",
     .record = "100 % 8 s",
     .state = "3/100",
     .readyAds = "other"},
    {.name = "SkippedThenThePageDismisses",
     .happens =
         [](AdShow& show) {
             playAThird(show);
             show.skip();
             EXPECT_EQ(show.player()->count("pause"), 1);
             EXPECT_TRUE(show.page()->widget->isVisible());
             show.command("dismiss");
         },
     .told = "false",
     .trackers = "0:start 2:firstQuartile skip:skip dismiss:complete",
     .record = "0 % 8 s",
     .state = "3/0",
     .readyAds = "other"},
    {.name = "SkippedWithoutAPage",
     .happens =
         [](AdShow& show) {
             auto creative = show.video();
             creative.replace(creative.find(R"("type": 1)"), 9, R"("type": 2)");
             show.showUnasked(AdShow::ready("s", creative));
             show.rest();
             show.play();
             show.tick({0, 2.4});
             show.skip();
         },
     .told = "false",
     .trackers = "0:start 2.4:firstQuartile skip:skip last:complete",
     .record = "0 % 8 s",
     .state = "3/0",
     .readyAds = "other"},
    {.name = "SkippedTwiceAndThenFailed",
     .happens =
         [](AdShow& show) {
             playAThird(show);
             show.shown()->videoView->skipButtonClicked();
             show.skip();
             show.fail();
         },
     .told = "false",
     .trackers = "0:start 2:firstQuartile skip:skip",
     .record = "",
     .state = "3/0",
     .readyAds = kBoth},
    {.name = "Left",
     .happens =
         [](AdShow& show) {
             playAThird(show);
             show.leave();
             EXPECT_EQ(show.told(), "false");
         },
     .told = "false",
     .trackers = "0:start 2:firstQuartile left:complete",
     .record = "0 % 8 s",
     .state = "3/0",
     .readyAds = "other"},
    {.name = "LeftWithADialogToCome",
     .happens =
         [](AdShow& show) {
             const auto options = std::make_shared<VLAdShowOptions>();
             options->setShowDialoged(true);
             playAThird(show, options);
             show.leave();
             EXPECT_EQ(show.shown()->presentedViewController(), nullptr);
         },
     .told = "",
     .trackers = "0:start 2:firstQuartile",
     .record = "",
     .state = "3/0",
     .readyAds = kBoth,
     .isGone = false},
    {.name = "ThePageClosesBehindTheVideo",
     .happens =
         [](AdShow& show) {
             playAThird(show);
             const auto player = show.player();
             show.command("close");
             EXPECT_EQ(player->count("pause"), 1);
         },
     .told = "false",
     .trackers = "0:start 2:firstQuartile close:complete",
     .record = "0 % 8 s",
     .state = "3/0",
     .readyAds = "other"},
    {.name = "FailedBeforeItHadALength",
     .happens =
         [](AdShow& show) {
             show.show(show.video());
             show.fail();
         },
     .told = "true",
     .trackers = "",
     .record = "",
     .state = "3",
     .readyAds = kBoth},
    {.name = "FailedWhenItHadALength",
     .happens =
         [](AdShow& show) {
             playAThird(show);
             show.fail();
         },
     .told = "false",
     .trackers = "0:start 2:firstQuartile",
     .record = "",
     .state = "3/0",
     .readyAds = kBoth},
    {.name = "FailedAndItsPlayerDismissedFirst",
     .happens =
         [](AdShow& show) {
             playAThird(show);
             const auto controller = show.shown();
             controller->vlAVPlayerViewControllerCouldNotLoadVideoWithUrl(*controller->videoView,
                                                                          std::nullopt);
             controller->vlOnAVPlayerDismissed(false);
             controller->vlWebViewBridgeDismiss();
             show.rest();
         },
     .told = "false",
     .trackers = "0:start 2:firstQuartile",
     .record = "",
     .state = "3/0",
     .readyAds = kBoth},
    {.name = "WithoutASource",
     .happens =
         [](AdShow& show) {
             const auto ad = AdShow::ready("s", show.video());
             ad->getRequestOptions()->setCacheType(7);
             show.show(ad);
             EXPECT_EQ(show.players_.made(), 0U);
         },
     .told = "true",
     .trackers = "",
     .record = "",
     .state = "3",
     .readyAds = kBoth},
    {.name = "OfUnknownLength",
     .happens = [](AdShow& show) { endWithLength(show, std::numeric_limits<double>::quiet_NaN()); },
     .told = "false",
     .trackers = "0:start end:complete",
     .record = "100 % 30 s",
     .state = "3/0",
     .readyAds = "other"},
    {.name = "OfLengthZero",
     .happens = [](AdShow& show) { endWithLength(show, 0); },
     .told = "false",
     .trackers = "0:start end:complete",
     .record = "100 % 30 s",
     .state = "3/0",
     .readyAds = "other"},
    {.name = "OfLessThanASecond",
     .happens = [](AdShow& show) { endWithLength(show, 0.9); },
     .told = "false",
     .trackers = "0:start end:complete",
     .record = "100 % 30 s",
     .state = "3/0",
     .readyAds = "other"},
    {.name = "OfABannerThatCloses",
     .happens =
         [](AdShow& show) {
             show.show(AdShow::banner());
             EXPECT_TRUE(show.page()->widget->isVisible());
             show.command("close");
         },
     .told = "",
     .trackers = "",
     .record = "100 % 30 s",
     .state = "3/100",
     .readyAds = "other"},
    {.name = "OfABannerThatDismisses",
     .happens =
         [](AdShow& show) {
             show.show(AdShow::banner());
             show.command("dismiss");
         },
     .told = "",
     .trackers = "",
     .record = "100 % 30 s",
     .state = "3/100",
     .readyAds = "other"},
    {.name = "OfABannerWhoseStartIsKnown",
     .happens =
         [](AdShow& show) {
             show.show(AdShow::banner());
             show.shown()->webViewStartTime = 5;
             show.command("close");
         },
     .told = "",
     .trackers = "",
     .record = "100 % 100 s",
     .state = "3/100",
     .readyAds = "other"},
    {.name = "WithoutACallToAction",
     .happens =
         [](AdShow& show) {
             show.show(AdShow::ready("s", AdShow::banner(), ""));
             show.command("close");
         },
     .told = "",
     .trackers = "",
     .record = "",
     .state = "3/100",
     .readyAds = "other"},
};

INSTANTIATE_TEST_SUITE_P(Ends, AdShowEnd, testing::ValuesIn(kEnds),
                         [](const auto& one) { return one.param.name; });

}  // namespace

}  // namespace velmora::test
