#include "harness/TemporaryDirectory.h"
#include "log/VLLog.h"
#include "model/VLActionModel.h"
#include "model/VLAdRequestOptionsState.h"
#include "model/VLAdSuggestion.h"
#include "model/VelmoraAdState.h"
#include "platform/FileManager.h"
#include "store/VLDefaults.h"
#include "support/ApplicationStore.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/Threads.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <velmora/velmora.h>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

/// Time stands still at 1700000000000.
class AdHandle : public testing::Test {
protected:
    UseManualClock clock_;
    LogCapture log_;
};

TEST_F(AdHandle, ItsIdentifierIsThatOfTheAdOrMadeFromTheZone) {
    const std::pair<const char*, std::optional<std::string>> cases[] = {
        {"{}", "3353fkad"},
        {R"({"zoneId": "z"})", "3353fkad_z"},
        {R"({"zoneId": 5})", "3353fkad"},
        {R"({"zoneId": "z", "mAd": {"suggestionId": "s"}})", "s"},
        {R"({"zoneId": "z", "mAd": {"suggestionId": 5}})", std::nullopt},
        {R"({"zoneId": "z", "mAd": null})", "3353fkad_z"},
    };

    for (const auto& [handle, id] : cases) EXPECT_EQ(read<VelmoraAd>(handle)->getId(), id) << handle;
}

TEST_F(AdHandle, ANewOneHoldsNothingAndIsValidAndWritesTheTimeEvenWithLoggingOff) {
    VLLogger::setShallLog(false);
    const VelmoraAd ad;

    EXPECT_EQ(written(ad),
              valueOf(R"({"cacheTime": null, "zoneId": null, "isShown": false, "videoFilePath": null})"));
    EXPECT_FALSE(ad.getZoneId() || ad.getCacheTime() || ad.getVideoFilePath() || ad.getRequestOptions());
    EXPECT_FALSE(ad.isAdShown() || ad.isVideoAd() || ad.isRewardedAd() || ad.isBannerAd());
    EXPECT_TRUE(ad.isFileRemoved());
    EXPECT_TRUE(ad.isValid());
    EXPECT_TRUE(log_.empty());
    EXPECT_FALSE(ad.isExpired());
    EXPECT_TRUE(read<VelmoraAd>(R"({"mAd": {"creative": {"ctaType": 2}}})")->isValid());
    EXPECT_EQ(log_.lines(), std::vector<std::string>(2, "now epoch time  millis 1700000000000"));
}

TEST_F(AdHandle, TheTypeOfTheCreativeSaysWhatItIs) {
    const struct {
        const char* type;
        bool isVideo;
        bool isRewarded;
        bool isBanner;
    } kinds[] = {{"1", true, true, false},
                 {"2", false, false, true},
                 {"3", true, false, false},
                 {"4", false, false, false}};
    for (const auto& one : kinds) {
        const auto kind =
            read<VelmoraAd>(R"({"mAd": {"creative": {"ctaType": )" + std::string(one.type) + "}}}");
        EXPECT_EQ(kind->isVideoAd(), one.isVideo) << one.type;
        EXPECT_EQ(kind->isRewardedAd(), one.isRewarded) << one.type;
        EXPECT_EQ(kind->isBannerAd(), one.isBanner) << one.type;
    }
}

TEST_F(AdHandle, ItTakesOnlyASuggestionForItsAd) {
    const VelmoraAd ad;
    const auto suggestion = std::make_shared<VLAdSuggestion>();
    ad.state().setAd(std::make_shared<VLActionModel>());
    EXPECT_EQ(ad.state().mAd.get(), nullptr);
    ad.state().setAd(suggestion);
    ad.state().setAd(std::make_shared<VLActionModel>());
    ad.state().setAd(nullptr);
    EXPECT_EQ(ad.state().mAd.get(), suggestion);
}

TEST_F(AdHandle, ItExpiresWhenItsTimeHasPassedToTheMillisecond) {
    const struct {
        const char* cacheTime;
        const char* expirationTime;
        bool expired;
    } cases[] = {
        {"1699999999000", "1000", false},
        {"1699999998999", "1000", true},
        {"1699999999000.9", "999.9", true},
        {"1699999999999", "\"never\"", true},
        {"null", "1", false},
        {"1", "null", false},
        {"9223372036854775807", "9223372036854775807", false},
        {"18446744073709551615", "1e300", false},
        {"-1e300", "-1e300", true},
        {"-9223372036854775808", "9223372036854775807", true},
    };

    for (const auto& one : cases) {
        const auto ad =
            read<VelmoraAd>(std::string(R"({"cacheTime": )") + one.cacheTime +
                            R"(, "mAd": {"expirationTimeInMillis": )" + one.expirationTime + "}}");
        EXPECT_EQ(ad->isExpired(), one.expired) << one.cacheTime << " + " << one.expirationTime;
    }
    EXPECT_FALSE(read<VelmoraAd>(R"({"cacheTime": 1})")->isExpired());

    const auto ad = read<VelmoraAd>(R"({"cacheTime": 1700000000000, "mAd": {"expirationTimeInMillis": 5}})");
    clock_->advance(std::chrono::milliseconds(5));
    EXPECT_FALSE(ad->isExpired());
    clock_->advance(std::chrono::milliseconds(1));
    EXPECT_TRUE(ad->isExpired());
}

TEST_F(AdHandle, ItsKindSettlesWhatMakesItValid) {
    const TemporaryDirectory directory;
    const auto file = directory / "v.mp4";
    ASSERT_TRUE(platform::FileManager::write(file, "video"));
    const std::string present = ", \"videoFilePath\": \"" + file.string() + "\"";
    const std::string removed = present.substr(0, present.size() - 1) + ".gone\"";
    const std::string cached = R"(, "requestOptions": {"mCacheType": 1})";
    const std::string streamed = R"(, "requestOptions": {"mCacheType": 2})";
    const std::string unsetOptions = R"(, "requestOptions": {})";
    const std::string fresh = R"(, "cacheTime": 1700000000000)";
    const std::string expired = R"(, "cacheTime": 1)";

    const struct {
        const char* creative;
        std::string rest;
        bool valid;
    } cases[] = {
        {R"({"ctaType": 1})", fresh + present, false},
        {R"({"ctaType": 1})", cached + fresh + present, true},
        {R"({"ctaType": 3})", cached + present, true},
        {R"({"ctaType": 3})", cached + fresh + removed, false},
        {R"({"ctaType": 3})", cached + fresh, false},
        {R"({"ctaType": 1})", cached + expired + present, false},
        {R"({"ctaType": 1})", streamed + fresh + removed, true},
        {R"({"ctaType": 3})", streamed, true},
        {R"({"ctaType": 3})", unsetOptions + fresh, true},
        {R"({"ctaType": 1})", streamed + expired + present, false},
        {R"({"ctaType": 2})", "", true},
        {R"({"ctaType": 2})", cached + expired + present, false},
        {R"({"ctaType": 4})", streamed + fresh + present, false},
        {R"({"ctaType": "2"})", fresh, false},
        {"null", streamed + fresh, false},
    };

    for (const auto& one : cases) {
        const auto ad = read<VelmoraAd>(R"({"mAd": {"expirationTimeInMillis": 1000, "creative": )" +
                                        std::string(one.creative) + "}" + one.rest + "}");
        EXPECT_EQ(ad->isValid(), one.valid) << one.creative << one.rest;
    }
    EXPECT_TRUE(read<VelmoraAd>(R"({"cacheTime": 1, "requestOptions": {"mCacheType": 1}})")->isValid());
}

TEST_F(AdHandle, RequestOptionsAreStreamedUnlessTheyAreOne) {
    const struct {
        const char* stored;
        std::int64_t cacheType;
        std::optional<std::int64_t> number;
    } cases[] = {
        {"null", 2, std::nullopt}, {"1", 1, 1},    {"2", 2, 2},   {"7", 2, 7},
        {"\"1\"", 2, 1},           {"true", 1, 1}, {"1.0", 1, 1},
    };

    for (const auto& one : cases) {
        const auto options = read<VLAdRequestOptions>(R"({"mCacheType": )" + std::string(one.stored) + "}");
        EXPECT_EQ(options->getCacheType(), one.cacheType) << one.stored;
        EXPECT_EQ(options->getCacheTypeNumber(), one.number) << one.stored;
    }
}

TEST_F(AdHandle, ShowOptionsHaveDefaultsAndForgetUnknownOrientations) {
    VLAdShowOptions options;
    EXPECT_EQ(options.getOrientation(), 3);
    EXPECT_FALSE(options.getBackDisabled() || options.getShowDialoged());

    using enum VLOrientation;
    const VLOrientation kept[] = {any, portrait, landscapeLeft, any, landscapeRight, portraitUpsideDown, any};
    for (std::int64_t set = 0; set <= 6; ++set) {
        options.setOrientation(portrait);
        options.setOrientation(set);
        EXPECT_EQ(options.getOrientation(), kept[set]) << set;
    }
    // Applications pass the number, too.
    EXPECT_EQ(TYPE_DISABLE_BACK, 1);
    options.setBackDisabled(TYPE_DISABLE_BACK);
    EXPECT_TRUE(options.getBackDisabled() && !options.getShowDialoged());
    options.setBackDisabled(false);
    options.setShowDialoged(true);
    EXPECT_TRUE(!options.getBackDisabled() && options.getShowDialoged());
}

// What this says of other threads, the thread sanitizer sees.
TEST_F(AdHandle, ItIsStoredWhileItsShowSetsFlags) {
    ApplicationStore store;
    const auto ad = read<VelmoraAd>(R"({"mAd": {"suggestionId": "a", "creative": {"ctaType": 1}}})");
    const auto options = std::make_shared<VLAdRequestOptions>();
    ad->state().setAdRequestOptions(options);
    VLAdShowOptions showOptions;
    {
        const Threads threads(2, [&](int thread) {
            for (int round = 0; round < 20; ++round) {
                if (thread == 0) {
                    VLDefaults::cacheNewAd(ad);
                    EXPECT_TRUE(ad->isValid());
                    EXPECT_GE(showOptions.getOrientation(), 1);
                    continue;
                }
                const auto suggestion = ad->state().mAd.get();
                ad->state().setAd(suggestion);
                ad->state().setZoneId(std::string(100, 'z'));
                ad->state().setCacheTime(round);
                ad->state().setAdRequestOptions(options);
                options->setCacheType(2);
                showOptions.setOrientation(round);
                suggestion->filledReported.set(Property(round % 2 == 0));
                suggestion->reportAdIsFilled();
                suggestion->reportAdIsDoing();
                suggestion->reportAdIsDoneWithFinalStates(nullptr);
                ad->state().isShown.set(Property(true));
                ad->state().setVideoFilePath(std::string(100, 'p'));
            }
        });
    }
    VLDefaults::cacheNewAd(ad);

    const auto ads = store.list("cachedAds", "cachedVelmoraAds");
    ASSERT_EQ(ads.size(), 21U);
    EXPECT_TRUE(ad->isAdShown());
    const auto& last = ads.back();
    EXPECT_EQ(last.at("isShown"), true);
    EXPECT_EQ(last.at("videoFilePath"), Value(std::string(100, 'p')));
    for (const char* flag : {"filledReported", "doingReported", "doneReported"})
        EXPECT_EQ(last.at("mAd").at(flag), true) << flag;
}

}  // namespace

}  // namespace velmora::test
