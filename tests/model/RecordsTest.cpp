#include "support/Records.h"
#include "support/AllRecords.h"

#include <string>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

TEST(Records, NothingIsReportedUntilItIsAndANullMarkerForgetsWhetherItWas) {
    expectConversions<VLAdSuggestion>({
        {"{}", R"({"filledReported": false, "doingReported": false, "doneReported": false})"},
        {R"({"filledReported": true, "doingReported": null})",
         R"({"filledReported": true, "doneReported": false})"},
    });
    EXPECT_EQ(read<VLVastTrackingData>(R"({"isMidpointReported": null})")->isMidpointReported.get(),
              std::nullopt);
}

TEST(Records, TrackingDataKeepsEachListAtItsEvent) {
    const auto trackers =
        makeList<VLProgressTrackerModel>({read<VLProgressTrackerModel>(R"({"first": "50%"})")});
    const auto output =
        written(VLVastTrackingData(Value(1), Value(2), Value(3), Value(4), Value(5), Value(6), Value(7),
                                   Value(8), Value(9), Value(10), Value(11), trackers));
    int number = 0;
    for (const char* event : {"start", "firstQuartile", "midpoint", "thirdQuartile", "complete", "mute",
                              "unmute", "fullscreen", "exitFullscreen", "skip", "replay"}) {
        EXPECT_EQ(output.at(event + std::string("TrackerUrls")), Value(++number)) << event;
    }
    EXPECT_EQ(output.at("progressTrackingUrls"), valueOf(R"([{"first": "50%"}])"));
}

TEST(Records, WhatARecordIsMadeOfStandsInItsPlace) {
    const VLDirectCreativeModel creative(
        2, "https://c", read<VLActionModel>(R"({"type": 1})"),
        read<VLSkipStarPercentageModel>(R"({"type": 3})"),
        makeList<VLVibrationPattern>({std::make_shared<VLVibrationPattern>(0.5, std::nullopt)}), nullptr);
    EXPECT_EQ(written(creative), valueOf(R"({"ctaType": 2, "ctaUrl": "https://c", "action": {"type": 1},
        "skipStartPercentage": {"type": 3}, "vibrationPatterns": [{"vibrationStartMomentInSeconds": 0.5}]})"));
    EXPECT_EQ(written(VLTrackerModel(4, "app://a")), valueOf(R"({"type": 4, "customAppUrl": "app://a"})"));
    EXPECT_EQ(written(VLAdSuggestionFinalState(Value("s"), VLFinalState::initial, Value(Dictionary()))),
              valueOf(R"({"suggestionId": "s", "state": 2, "extraInfo": {}})"));
}

TEST(Records, TheTypeOfACreativeSettlesWhatItIsAndWhetherItIsSupported) {
    using enum VLCreativeType;

    const struct {
        const char* creative;
        VLCreativeType type;
        bool supported;
    } cases[] = {
        {R"({})", unknown, false},
        {R"({"ctaType": 1, "ctaUrl": "u", "action": {"type": 1}})", rewardedVideo, true},
        {R"({"ctaType": 3, "ctaUrl": "u", "action": {"type": 1}})", video, true},
        {R"({"ctaType": 3, "ctaUrl": "u", "action": {"type": "1"}})", video, true},
        {R"({"ctaType": 3, "ctaUrl": "u", "action": {"type": 2}})", video, false},
        {R"({"ctaType": 1, "ctaUrl": "u", "action": {}})", rewardedVideo, false},
        {R"({"ctaType": 3, "ctaUrl": "u"})", video, false},
        {R"({"ctaType": 3, "action": {"type": 1}})", video, false},
        {R"({"ctaType": 1, "ctaUrl": null, "action": {"type": 1}})", rewardedVideo, false},
        {R"({"ctaType": 2, "ctaUrl": "u"})", banner, true},
        {R"({"ctaType": 2.0, "ctaUrl": 5})", banner, true},
        {R"({"ctaType": 2, "action": {"type": 1}})", banner, false},
        {R"({"ctaType": true, "ctaUrl": "u", "action": {"type": 1}})", rewardedVideo, true},
        {R"({"ctaType": 0, "ctaUrl": "u", "action": {"type": 1}})", unknown, false},
        {R"({"ctaType": "2", "ctaUrl": "u"})", unknown, false},
    };

    for (const auto& one : cases) {
        const auto creative = read<VLDirectCreativeModel>(one.creative);
        EXPECT_EQ(creative->getCreativeTypeEnum(), one.type) << one.creative;
        EXPECT_EQ(creative->getCtaType(), one.type) << one.creative;
        EXPECT_EQ(creative->isSupported(), one.supported) << one.creative;
    }
    EXPECT_EQ(static_cast<int>(unknown), 800);
}

TEST(Records, ARequestForARewardHasDoneSuggestionsOnlyWhenAListIsGiven) {
    EXPECT_EQ(written(VLRewardRequestJsonParams(nullptr, std::make_shared<VLFinalStatesModel>(), nullptr)),
              valueOf(R"({"finalStatesRequest": {"states": []}})"));
    EXPECT_EQ(written(VLRewardRequestJsonParams(makeList<VLDoneAdSuggestion>(), nullptr,
                                                std::make_shared<VLUserExtraInfoModel>())),
              valueOf(R"({"doneSuggestions": [], "userExtraInfo": {}})"));
    EXPECT_EQ(written(*read<VLRewardRequestJsonParams>(R"({"doneSuggestions": "text"})")),
              valueOf(R"({"doneSuggestions": []})"));

    const auto filled = read<VLRewardRequestJsonParams>(R"({"doneSuggestions": [{"suggestionId": "s"}]})");
    auto none = valueOf(R"({"doneSuggestions": null})");
    filled->setValuesForKeysWithDictionary(&none.as_object());
    EXPECT_EQ(written(*filled), Value(Dictionary()));
}

TEST(Records, AnAbsentPlaceIsWrittenAsAnEmptyDictionaryAndStaysAbsentWithoutAnEntry) {
    EXPECT_EQ(written(GeoInfo()), valueOf(R"({"geoInfoLocation": {}})"));
    EXPECT_EQ(read<GeoInfo>("{}")->geoInfoLocation.get(), nullptr);
    EXPECT_EQ(read<GeoInfo>(R"({"geoInfoLocation": null})")->geoInfoLocation.get(), nullptr);
    EXPECT_NE(read<GeoInfo>(R"({"geoInfoLocation": {}})")->geoInfoLocation.get(), nullptr);
}

}  // namespace

}  // namespace velmora::test
