#include "harness/Files.h"
#include "model/VLCachedDoneAdSuggestions.h"
#include "model/VLCachedVelmoraAds.h"
#include "model/VLDoneAdSuggestion.h"
#include "model/VLFinalStatesModel.h"
#include "model/VLRequestQueueImpl.h"
#include "model/VelmoraAdState.h"
#include "platform/Directories.h"
#include "store/VLDefaults.h"
#include "support/Records.h"
#include "support/StoreFiles.h"

#include <velmora/VLAdRequestOptions.h>
#include <velmora/VelmoraAd.h>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

/// What the first version of the library stored after six requests and a few shows.
TEST(FirstVersion, ItsStoreIsReadAndWrittenBackUnchanged) {
    const auto file = platform::applicationDataDirectory() / "defaults.sqlite3";
    std::filesystem::create_directories(file.parent_path());
    Stranger stranger(file);
    stranger.run(contentOf(VELMORA_FIRST_VERSION));

    EXPECT_EQ(VLDefaults::getDeveloperKey(), "key \"1\" ü");
    EXPECT_TRUE(VLDefaults::getDebugMode());
    EXPECT_EQ(VLDefaults::getAppUserId(), "player-7 سلام");
    EXPECT_EQ(VLDefaults::getVelmoraUserId(), "user-beaa0c9cc2de8d43");
    const auto ads = VLDefaults::getCachedAds();
    ASSERT_EQ(ads->cachedVelmoraAds.get()->size(), 6U);
    const auto& first = ads->cachedVelmoraAds.get()->front();
    EXPECT_EQ(first->getId(), "video-1");
    EXPECT_EQ(first->getZoneId(), "video");
    EXPECT_EQ(first->getVideoFilePath(), "/home/player/.local/share/game/velmora/Documents/video.mp4");
    EXPECT_EQ(first->getRequestOptions()->getCacheType(), 1);
    EXPECT_TRUE(first->isVideoAd() && !first->isRewardedAd());

    const auto done = VLDefaults::getDoneAdSuggestions();
    ASSERT_EQ(done->size(), 2U);
    EXPECT_EQ(done->back()->donePercentage, platform::Property(12.5));
    const auto queue = VLDefaults::getRequestQueue();
    EXPECT_EQ(queue->count(), 1U);

    const auto stored = [&] {
        std::string all;
        for (const char* key : {"cachedAds", "cachedDoneAdSuggestions", "finalstates", "requestQueue"})
            all += platform::writeJson(valueOf(stranger.valueOf(key).value())).value() + "\n";
        return all;
    };
    const auto before = stored();
    VLDefaults::setCachedAds(ads);
    VLDefaults::setDoneAdSuggestions(done);
    VLDefaults::setFinalStates(VLDefaults::getFinalStates());
    VLDefaults::setRequestQueue(queue);
    EXPECT_EQ(stored(), before);
}

}  // namespace

}  // namespace velmora::test
