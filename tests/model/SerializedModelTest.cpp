#include "model/VLSerializedModel.h"

#include "model/Schema.h"
#include "support/AllRecords.h"
#include "support/Records.h"

#include <initializer_list>
#include <set>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

/// Where two values differ: a line for each, with its keys from the outside in.
std::string differences(const Value& one, const Value& other, const std::string& path = "") {
    if (!one.is_object() || !other.is_object()) {
        return one == other ? ""
                            : path + ": " + platform::description(one) + ", not " +
                                  platform::description(other) + "\n";
    }
    std::string lines;
    for (const auto& [key, value] : one.as_object()) {
        const auto inner = path + "/" + std::string(key);
        const auto* same = other.as_object().if_contains(key);
        lines += same != nullptr ? differences(value, *same, inner) : inner + ": not wanted\n";
    }
    for (const auto& [key, value] : other.as_object()) {
        if (!one.as_object().contains(key)) lines += path + "/" + std::string(key) + ": is missing\n";
    }
    return lines;
}

/// Those of the record's table.
template <class Record>
std::set<std::string> keysOf() {
    std::set<std::string> keys;
    const auto record = recordFrom<Record>(nullptr);
    const VLSerializedModel& base = asRecord(*record);
    for (const auto& field : base.schema().fields()) keys.emplace(field.key);
    return keys;
}

/// What a record writes of `full`, a dictionary with every key that survives reading, and what it writes
/// after nothing was read.
template <class Record>
void expectRecord(const std::string& full, const std::string& empty) {
    auto input = valueOf(full);
    std::set<std::string> keys;
    for (const auto& entry : input.as_object()) keys.emplace(entry.key());
    EXPECT_EQ(keys, keysOf<Record>()) << "a field that this test leaves out";
    for (const char* key : {"", "unknown", "keys", "states_"}) input.as_object()[key] = 1;
    EXPECT_EQ(differences(written(*recordFrom<Record>(&input.as_object())), valueOf(full)), "");
    EXPECT_EQ(differences(written(*recordFrom<Record>(nullptr)), valueOf(empty)), "");
    EXPECT_EQ(differences(written(*read<Record>("{}")), valueOf(empty)), "");
}

TEST(SerializedModel, EveryRecordWritesWhatItKnowsOfTheDictionaryThatItRead) {
    const std::string action = R"({"type": 1, "actionUrl": "https://a"})";
    const std::string skip = R"({"type": 2, "skipStartPercentage": 30})";
    const std::string progress = R"({"first": "10%", "second": "https://p"})";
    const std::string vast = R"({"startTrackerUrls": ["1"], "firstQuartileTrackerUrls": ["2"],
        "midpointTrackerUrls": ["3"], "thirdQuartileTrackerUrls": ["4"], "completeTrackerUrls": ["5"],
        "muteTrackerUrls": ["6"], "unmuteTrackerUrls": ["7"], "fullscreenTrackerUrls": ["8"],
        "exitFullscreenTrackerUrls": ["9"], "skipTrackerUrls": ["10"], "replayTrackerUrls": ["11"],
        "progressTrackingUrls": [], "isStartTrackerReported": true, "isFirstQuartileTrackerReported": true,
        "isMidpointReported": 1, "isThirdQuartileTrackerReported": true, "isCompleteTrackerReported": true,
        "isFullscreenTrackerReported": true, "isExitFullscreenTrackerReported": true,
        "isSkipTrackerReported": true})";
    const std::string emptyVast = R"({"progressTrackingUrls": [], "isStartTrackerReported": false,
        "isFirstQuartileTrackerReported": false, "isMidpointReported": false,
        "isThirdQuartileTrackerReported": false, "isCompleteTrackerReported": false,
        "isFullscreenTrackerReported": false, "isExitFullscreenTrackerReported": false,
        "isSkipTrackerReported": false})";
    const std::string creative = R"({"ctaType": 3, "ctaUrl": "https://c", "action": )" + action +
                                 R"(, "skipStartPercentage": )" + skip +
                                 R"(, "vibrationPatterns": [], "vastTrackingData": )" + vast + "}";
    const std::string suggestion = R"({"callToActionId": "cta", "suggestionId": "s", "title": "t",
        "description": "<b>", "expirationTimeInMillis": 3600000, "filledReported": true,
        "doingReported": true, "doneReported": true, "creative": )" +
                                   creative + "}";
    const std::string emptySuggestion =
        R"({"filledReported": false, "doingReported": false, "doneReported": false})";
    const std::string list = R"({"suggestions": [)" + suggestion + ", " + emptySuggestion + R"(],
        "selectDirectAdRandomly": true, "serverSuggestedCacheType": 2, "velmoraUserId": "u",
        "ctaDisabled": false, "ctaDisabledMessage": "m"})";
    const std::string state = R"({"suggestionId": "s", "state": 2, "extraInfo": {"k": [1, null]}})";
    const std::string states = R"({"states": [)" + state + R"(, {}]})";
    const std::string done = R"({"suggestionId": "s", "callToActionId": "cta", "donePercentage": 99.5,
        "doneSeconds": 12, "extraInfo": {}})";
    const std::string ad = R"({"mAd": )" + suggestion + R"(, "cacheTime": 1700000000000,
        "zoneId": "z", "isShown": true, "videoFilePath": "/v.mp4", "requestOptions": {"mCacheType": 1}})";
    const std::string place = R"({"address": "a", "locality": "b", "country": "c",
        "isoCountryCode": "d", "name": "e", "ocean": "f", "postalCode": "g", "administrativeArea": "h",
        "subAdministrativeArea": "i", "inlandWater": "j", "latitude": 52.5, "longitude": 13.4,
        "altitude": 34.5, "horizontalAccuracy": 5.5, "verticalAccuracy": -1.5})";
    const std::string geo = R"({"geoInfoLocation": )" + place + "}";
    const std::string user = R"({"imei": "a", "screenWidth": 1170, "screenHeight": 2532.5,
        "screenDensity": 480, "screenOrientation": 1, "appVersion": "b", "carrier": "c", "deviceModel": "d",
        "deviceManufacturer": "e", "deviceBrand": "f", "deviceLanguage": "g", "mcc": 262, "mnc": 5,
        "geoInfo": )" + geo + "}";
    const std::string about = R"("finalStatesRequest": )" + states + R"(, "userExtraInfo": )" + user + "}";
    const std::string crash = R"({"bundleIdentifier": "a", "velmoraSDKVersion": "b", "os": "c",
        "osVersion": "d", "device": "e", "deviceModel": "f", "deviceManufacturer": "g", "content": "h"})";
    const std::string queued = R"({"url": "https://q", "inputs": {"a": "b"}, "jsonParams": {"c": [{}]},
        "requestMode": 2, "includeCustomHeaders": true, "callBackType": 1,
        "callBackDoneSuggestionIds": ["s"], "callBackFinalStateSuggestionIds": ["f"]})";

    expectRecord<VLAdSuggestion>(suggestion, emptySuggestion);
    expectRecord<VLDirectCreativeModel>(creative, R"({"vibrationPatterns": []})");
    expectRecord<VLActionModel>(action, R"({"type": 0})");
    expectRecord<VLSkipStarPercentageModel>(skip, R"({"type": 0})");
    expectRecord<VLVibrationPattern>(R"({"vibrationStartMomentInSeconds": 1.5, "pattern": [1, 2]})", "{}");
    expectRecord<VLAdSuggestionValidationRule>(R"({"type": 1, "customAppUrl": "app://"})", "{}");
    expectRecord<VLTrackerModel>(R"({"type": 1, "customAppUrl": "app://"})", "{}");
    expectRecord<VLProgressTrackerModel>(progress, "{}");
    expectRecord<VLVastTrackingData>(vast, emptyVast);
    expectRecord<VLSuggestionListDirectResponseModel>(list, R"({"suggestions": []})");
    expectRecord<VLRewardResponseModel>(R"({"awardedCoin": 5})", "{}");
    expectRecord<VLDirectAdSuggestionRequestJsonParams>(
        R"({"clientRequestedCacheType": 1, "zoneId": "z", )" + about, "{}");
    expectRecord<VLRewardRequestJsonParams>(R"({"doneSuggestions": [)" + done + "], " + about, "{}");
    expectRecord<VLCrashReportRequestModel>(crash, "{}");
    expectRecord<VLUserExtraInfoModel>(user, "{}");
    expectRecord<GeoInfo>(geo, R"({"geoInfoLocation": {}})");
    expectRecord<GeoInfoLocationIOS>(place, "{}");
    expectRecord<VLAdSuggestionFinalState>(state, "{}");
    expectRecord<VLFinalStatesModel>(states, R"({"states": []})");
    expectRecord<VLDoneAdSuggestion>(done, "{}");
    expectRecord<VLCachedDoneAdSuggestions>(R"({"doneAdSuggestions": [)" + done + R"(, {}]})",
                                            R"({"doneAdSuggestions": []})");
    expectRecord<VLCachedVelmoraAds>(R"({"cachedVelmoraAds": [)" + ad + R"(]})",
                                     R"({"cachedVelmoraAds": []})");
    expectRecord<VLCachedRequestItem>(queued, "{}");
    expectRecord<VLRequestQueueImpl>(R"({"requests": [)" + queued + R"(, {}]})", R"({"requests": []})");
    expectRecord<VelmoraAd>(
        ad, R"({"cacheTime": null, "zoneId": null, "isShown": false, "videoFilePath": null})");
    expectRecord<VLAdRequestOptions>(R"({"mCacheType": 1})", R"({"mCacheType": null})");
}

TEST(SerializedModel, APlainPropertyKeepsAnyKindAndANullMarkerMakesItAbsent) {
    expectConversions<VLDoneAdSuggestion>({
        {R"({"suggestionId": 7, "donePercentage": "50", "extraInfo": [null, {"a": null}]})",
         R"({"suggestionId": 7, "donePercentage": "50", "extraInfo": [null, {"a": null}]})"},
        {R"({"suggestionId": null, "doneSeconds": 1.0})", R"({"doneSeconds": 1.0})"},
    });

    const auto record = read<VLDoneAdSuggestion>(R"({"suggestionId": "a", "doneSeconds": 1})");
    auto next = valueOf(R"({"suggestionId": null})");
    record->setValuesForKeysWithDictionary(&next.as_object());
    EXPECT_EQ(written(*record), valueOf(R"({"doneSeconds": 1})"));
}

TEST(SerializedModel, ANestedRecordIsMadeFromAnyEntryButAMissingOneOrANullMarker) {
    const std::initializer_list<Conversion> cases{
        {R"({})", R"({"type": 5})"},
        {R"({"action": null})", R"({"type": 5})"},
        {R"({"action": {"actionUrl": "u"}})", R"({"type": 0, "actionUrl": "u"})"},
        {R"({"action": "text"})", R"({"type": 0})"},
        {R"({"action": [{"type": 1}]})", R"({"type": 0})"},
    };
    for (const auto& [input, output] : cases) {
        const auto creative = read<VLDirectCreativeModel>(R"({"action": {"type": 5}})");
        auto values = valueOf(input);
        creative->setValuesForKeysWithDictionary(&values.as_object());
        EXPECT_EQ(written(*creative->action), valueOf(output)) << input;
    }
}

TEST(SerializedModel, AListHasOneRecordForEachElementOfAnArrayAndNoneForAnythingElse) {
    expectConversions<VLCachedDoneAdSuggestions>({
        {R"({"doneAdSuggestions": null})", R"({"doneAdSuggestions": []})"},
        {R"({"doneAdSuggestions": "text"})", R"({"doneAdSuggestions": []})"},
        {R"({"doneAdSuggestions": {"suggestionId": "a"}})", R"({"doneAdSuggestions": []})"},
        {R"({"doneAdSuggestions": [{"suggestionId": "a", "x": 1}, {}, {"suggestionId": "b"}]})",
         R"({"doneAdSuggestions": [{"suggestionId": "a"}, {}, {"suggestionId": "b"}]})"},
        {R"({"doneAdSuggestions": [null, 1, "text", [], {"suggestionId": "a"}]})",
         R"({"doneAdSuggestions": [{}, {}, {}, {}, {"suggestionId": "a"}]})"},
    });
}

TEST(SerializedModel, AMappedNumberIsReducedToAWholeOne) {
    const std::initializer_list<Conversion> cases{
        {R"({"type": null})", R"({"type": 0})"},
        {R"({"type": -2.9})", R"({"type": -2})"},
        {R"({"type": true})", R"({"type": 1})"},
        {R"({"type": "12 percent"})", R"({"type": 12})"},
        {R"({"type": {"type": 1}})", R"({"type": 0})"},
        {R"({"type": 18446744073709551615})", R"({"type": 9223372036854775807})"},
        {R"({"type": -1e300})", R"({"type": -9223372036854775808})"},
    };
    expectConversions<VLActionModel>(cases);
    expectConversions<VLSkipStarPercentageModel>(cases);
    EXPECT_EQ(written(VLActionModel()), Value(Dictionary()));
}

TEST(SerializedModel, AMappedPropertyIsReadUnderItsOwnNameTooAndItsKeyKeepsTheNullMarker) {
    expectConversions<VLActionModel>({
        {R"({"actionType": "own"})", R"({"type": "own"})"},
        {R"({"actionType": "own", "type": 1})", R"({"type": "own"})"},
        {R"({"type": 1, "actionType": "own"})", R"({"type": "own"})"},
        {R"({"type": 1, "actionType": null})", "{}"},
    });
    EXPECT_EQ(read<VLAdSuggestion>(R"({"htmlDesciption": "own"})")->htmlDesciption, Value("own"));

    const auto marked = read<VLAdSuggestion>(R"({"description": null})");
    EXPECT_EQ(marked->htmlDesciption, Value(nullptr));
    EXPECT_EQ(written(*marked).at("description"), Value(nullptr));
}

TEST(SerializedModel, OnlyPlainPropertiesAreWrittenByRequest) {
    const auto suggestion = read<VLAdSuggestion>(R"({"title": "t", "description": "d"})");
    const std::initializer_list<std::pair<Keys, const char*>> cases{
        {{}, R"({"description": "d"})"},
        {{"title", "title"}, R"({"title": "t", "description": "d"})"},
        {{"suggestionId"}, R"({"suggestionId": null, "description": "d"})"},
        {{"htmlDesciption", "description", "creative", "", "titles"}, R"({"description": "d"})"},
    };
    for (const auto& [keys, output] : cases)
        EXPECT_EQ(Value(suggestion->dictionaryWithValuesForKeys(keys)), valueOf(output));
}

TEST(SerializedModel, TheKeysAreTheNamesOfThePresentPropertiesOrOfAllOfAnAdHandle) {
    const auto suggestion =
        read<VLAdSuggestion>(R"({"title": "t", "description": null, "doneReported": null})");
    EXPECT_THAT(suggestion->keys(),
                testing::UnorderedElementsAre("title", "htmlDesciption", "filledReported", "doingReported"));
    EXPECT_THAT(VLAdRequestOptions().state().keys(), testing::ElementsAre("mCacheType"));
    EXPECT_THAT(VelmoraAd().state().keys(),
                testing::UnorderedElementsAre("mAd", "cacheTime", "zoneId", "isShown", "videoFilePath",
                                              "requestOptions"));
}

TEST(SerializedModel, VibrationPatternsAndProgressTrackersAreWrittenButNeverRead) {
    VLDirectCreativeModel creative;
    creative.vibrationPatterns =
        makeList<VLVibrationPattern>({std::make_shared<VLVibrationPattern>(1.5, std::nullopt)});
    creative.vastTrackingData = std::make_shared<VLVastTrackingData>();
    creative.vastTrackingData->progressTrackingUrls.set(
        makeList<VLProgressTrackerModel>({read<VLProgressTrackerModel>(R"({"first": "5%"})")}));
    auto output = written(creative);
    EXPECT_EQ(output.at("vibrationPatterns"), valueOf(R"([{"vibrationStartMomentInSeconds": 1.5}])"));
    EXPECT_EQ(output.at("vastTrackingData").at("progressTrackingUrls"), valueOf(R"([{"first": "5%"}])"));

    const auto again = written(*recordFrom<VLDirectCreativeModel>(&output.as_object()));
    EXPECT_EQ(again.at("vibrationPatterns"), Value(Array()));
    EXPECT_EQ(again.at("vastTrackingData").at("progressTrackingUrls"), Value(Array()));
}

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
