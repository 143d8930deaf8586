#include "core/VelmoraAdState.h"
#include "model/VLAdSuggestion.h"
#include "model/VLDefaults.h"
#include "platform/Directories.h"
#include "platform/UserDefaults.h"
#include "support/Environment.h"
#include "support/LogCapture.h"
#include "support/Records.h"
#include "support/StoreFiles.h"
#include "support/Threads.h"
#include "tools/UserInfoGate.h"

#include <velmora/velmora.h>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

// What these two say of other threads, the thread sanitizer sees.

TEST(SharedRecords, AHandleIsStoredWhileItsShowSetsFlags) {
    const LogCapture quiet;
    platform::UserDefaults::standard().removeObjectForKey("cachedAds");
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

    const auto stored = valueOf(
        Stranger(platform::applicationDataDirectory() / "defaults.sqlite3").valueOf("cachedAds").value());
    const auto& ads = stored.at("cachedVelmoraAds").as_array();
    ASSERT_EQ(ads.size(), 21U);
    const auto& last = ads.back();
    EXPECT_EQ(last.at("isShown"), true);
    EXPECT_EQ(last.at("videoFilePath"), Value(std::string(100, 'p')));
    for (const char* flag : {"filledReported", "doingReported", "doneReported"})
        EXPECT_EQ(last.at("mAd").at(flag), true) << flag;
}

TEST(SharedRecords, EveryThreadSeesAUserInformationThatIsFilled) {
    const Environment noServices("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/bus");
    const Environment language("LANGUAGE", "fa_IR");
    VLUserExtraInfoModelGate::open();
    {
        const Threads threads(8, [](int) {
            for (int round = 0; round < 50; ++round) {
                const auto info = VLUserExtraInfoModel::getInstance();
                ASSERT_TRUE(info);
                ASSERT_EQ(info->deviceBrand, Property("Apple"));
                ASSERT_EQ(info->deviceLanguage, Property("fa-IR"));
            }
        });
    }
    VLUserExtraInfoModelGate::shut();
}

}  // namespace

}  // namespace velmora::test
