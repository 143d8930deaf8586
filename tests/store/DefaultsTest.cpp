#include "store/VLDefaults.h"

#include "harness/Files.h"
#include "platform/Directories.h"
#include "support/AllRecords.h"
#include "support/ApplicationStore.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/Threads.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

/// What every getter says of an empty store.
const Value& nothing() {
    static const auto value = valueOf(R"({"developerKey": null, "appUserId": null, "debugMode": false,
        "velmoraUserId": null, "requestQueue": {"requests": []}, "finalstates": {"states": []},
        "cachedDoneAdSuggestions": {"doneAdSuggestions": []}, "cachedAds": {"cachedVelmoraAds": []}})");
    return value;
}

platform::UserDefaults& store() { return platform::UserDefaults::standard(); }

Property stored(std::string_view key) { return store().objectForKey(key); }

class Defaults : public testing::Test {
protected:
    ApplicationStore seenByOthers_;

private:
    LogCapture quiet_;
};

/// What every getter says.
Value everything() {
    const auto text = [](const std::optional<std::string>& value) {
        return value ? Value(*value) : Value(nullptr);
    };
    return {{"developerKey", text(VLDefaults::getDeveloperKey())},
            {"appUserId", text(VLDefaults::getAppUserId())},
            {"debugMode", VLDefaults::getDebugMode()},
            {"velmoraUserId", text(VLDefaults::getVelmoraUserId())},
            {"requestQueue", written(*VLDefaults::getRequestQueue())},
            {"finalstates", written(*VLDefaults::getFinalStates())},
            {"cachedDoneAdSuggestions", written(*VLDefaults::getCachedDoneAdSuggestions())},
            {"cachedAds", written(*VLDefaults::getCachedAds())}};
}

constexpr auto kExpired = R"(, "expirationTimeInMillis": 1)";

/// A banner; `more` is of the handle, `ofTheAd` of its ad.
std::shared_ptr<VelmoraAd> banner(const std::string& id, const std::string& more,
                                  const std::string& ofTheAd = "") {
    return read<VelmoraAd>(R"({"mAd": {"suggestionId": ")" + id + R"(", "creative": {"ctaType": 2})" +
                           ofTheAd + R"(}, "cacheTime": 1)" + more + "}");
}

std::vector<std::string> cachedIds() {
    std::vector<std::string> ids;
    const auto ads = VLDefaults::getCachedAds()->cachedVelmoraAds.get();
    for (const auto& ad : *ads) ids.push_back(ad->getId().value_or("none"));
    return ids;
}

std::shared_ptr<VLAdRequestOptions> optionsOf(std::int64_t cacheType) {
    auto options = std::make_shared<VLAdRequestOptions>();
    options->setCacheType(cacheType);
    return options;
}

TEST_F(Defaults, AValueThatIsAbsentOrOfTheWrongKindReadsAsNothing) {
    EXPECT_EQ(everything(), nothing());
    for (const auto& [key, value] : nothing().as_object()) EXPECT_FALSE(store().hasKey(key)) << key;
    for (const char* json :
         {"null", "7", "[]", "{}", R"("no")", R"([{"states": [{}]}])", R"({"states": {}})"}) {
        for (const auto& [key, value] : nothing().as_object()) {
            const bool isText = *json == '"' && value.is_null();
            // Every number but 0 is a flag that is on.
            const bool isFlag = *json == '7' && value.is_bool();
            if (isText || isFlag) continue;
            store().setObject(valueOf(json), key);
            EXPECT_EQ(everything(), nothing()) << key << ": " << json;
            store().removeObjectForKey(key);
        }
    }
}

TEST_F(Defaults, EveryValueIsStoredUnderItsKeyAndRemovedByAnAbsentOne) {
    VLDefaults::setDeveloperKey("key");
    VLDefaults::setAppUserId("");
    VLDefaults::setVelmoraUserId("velmora \xC3\xBC");
    VLDefaults::setDebugMode(true);
    VLDefaults::setRequestQueue(
        read<VLRequestQueueImpl>(R"({"requests": [{"url": "u", "requestMode": 2}]})"));
    VLDefaults::setFinalStates(read<VLFinalStatesModel>(R"({"states": [{"suggestionId": "a"}]})"));
    VLDefaults::setCachedDoneAdSuggestions(
        read<VLCachedDoneAdSuggestions>(R"({"doneAdSuggestions": [{"doneSeconds": 1.5}]})"));
    VLDefaults::setCachedAds(read<VLCachedVelmoraAds>(R"({"cachedVelmoraAds": [{"zoneId": "z"}]})"));

    const auto all = valueOf(R"({"developerKey": "key", "appUserId": "", "debugMode": true,
        "velmoraUserId": "velmora ü", "requestQueue": {"requests": [{"url": "u", "requestMode": 2}]},
        "finalstates": {"states": [{"suggestionId": "a"}]},
        "cachedDoneAdSuggestions": {"doneAdSuggestions": [{"doneSeconds": 1.5}]},
        "cachedAds": {"cachedVelmoraAds":
            [{"cacheTime": null, "zoneId": "z", "isShown": false, "videoFilePath": null}]}})");
    EXPECT_EQ(everything(), all);
    for (const auto& [key, value] : nothing().as_object()) EXPECT_EQ(stored(key), all.at(key)) << key;

    VLDefaults::setDeveloperKey(std::nullopt);
    VLDefaults::setAppUserId(std::nullopt);
    VLDefaults::setVelmoraUserId(std::nullopt);
    VLDefaults::setDebugMode(false);
    VLDefaults::setRequestQueue(nullptr);
    VLDefaults::removeAllFinalStates();
    VLDefaults::setCachedDoneAdSuggestions(nullptr);
    VLDefaults::setCachedAds(nullptr);
    EXPECT_EQ(everything(), nothing());
    for (const auto& [key, value] : nothing().as_object())
        EXPECT_EQ(store().hasKey(key), key == "debugMode") << key;
}

TEST_F(Defaults, TheTokenIsKeptInMemoryOnly) {
    EXPECT_EQ(VLDefaults::getAuthorization(), std::nullopt);
    VLDefaults::setDeveloperKey("a key on disk");
    VLDefaults::setAuthorizationToken("a token in memory");

    EXPECT_EQ(VLDefaults::getAuthorization(), "a token in memory");
    std::string disk;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(platform::applicationDataDirectory())) {
        if (entry.is_regular_file()) disk += contentOf(entry.path());
    }
    EXPECT_NE(disk.find("a key on disk"), std::string::npos);
    EXPECT_EQ(disk.find("a token in memory"), std::string::npos);
}

TEST_F(Defaults, DoneSuggestionsAreAppendedAndNeverRemovedById) {
    const auto done = read<VLDoneAdSuggestion>(R"({"suggestionId": "a"})");
    VLDefaults::addDoneAdSuggestion(done);
    VLDefaults::addDoneAdSuggestion(nullptr);
    VLDefaults::setDoneAdSuggestions(VLDefaults::getDoneAdSuggestions());
    VLDefaults::addDoneAdSuggestion(read<VLDoneAdSuggestion>(R"({"suggestionId": "b"})"));
    VLDefaults::addDoneAdSuggestion(done);
    VLDefaults::removeDoneSuggestionsByIds(std::vector<std::string>{"a", "b"});
    EXPECT_EQ(stored("cachedDoneAdSuggestions"), valueOf(
                                                     R"({"doneAdSuggestions":
                  [{"suggestionId": "a"}, {"suggestionId": "b"}, {"suggestionId": "a"}]})"));

    VLDefaults::setDoneAdSuggestions(nullptr);
    EXPECT_EQ(stored("cachedDoneAdSuggestions"), valueOf(R"({"doneAdSuggestions": []})"));

    store().removeObjectForKey("cachedDoneAdSuggestions");
    VLDefaults::removeDoneSuggestionsByIds(std::vector<std::string>{"a"});
    EXPECT_FALSE(store().hasKey("cachedDoneAdSuggestions"));
}

TEST_F(Defaults, EveryFinalStateOfTheGivenIdsIsRemoved) {
    const std::vector<std::string> ids{"a", "c", "5"};
    VLDefaults::removeFinalStatesByIds(ids);
    EXPECT_FALSE(store().hasKey("finalstates"));

    store().setObject(
        valueOf(R"({"states": [{"suggestionId": "a"}, {"suggestionId": "b"}, {"suggestionId": 5}, {},
                                             {"suggestionId": "a", "state": 1}], "unknown": 1})"),
        "finalstates");
    VLDefaults::removeFinalStatesByIds(ids);
    const auto left = valueOf(R"({"states": [{"suggestionId": "b"}, {"suggestionId": 5}, {}]})");
    EXPECT_EQ(stored("finalstates"), left);
    VLDefaults::removeFinalStatesByIds(std::nullopt);
    EXPECT_EQ(stored("finalstates"), left);
}

TEST_F(Defaults, TheOldestValidAdThatMatchesIsReturnedAndInvalidOnesGo) {
    const UseManualClock clock;

    const struct {
        std::optional<std::string> zone;
        std::shared_ptr<VLAdRequestOptions> options;
        std::optional<std::string> found;
    } cases[] = {
        {"a", optionsOf(1), "cached"},
        {"a", nullptr, "first"},
        {std::nullopt, nullptr, "first"},
        {std::nullopt, optionsOf(7), "second"},
        {"b", nullptr, "b"},
        {"b", optionsOf(1), std::nullopt},
        {"", nullptr, std::nullopt},
    };

    for (const auto& one : cases) {
        VLDefaults::setCachedAds(nullptr);
        VLDefaults::cacheNewAd(banner("expired", R"(, "zoneId": "a")", kExpired));
        VLDefaults::cacheNewAd(nullptr);
        VLDefaults::cacheNewAd(banner("first", R"(, "zoneId": "a")"));
        VLDefaults::cacheNewAd(banner("no zone", R"(, "zoneId": 5)"));
        VLDefaults::cacheNewAd(banner("second", R"(, "zoneId": "a", "requestOptions": {"mCacheType": 2})"));
        VLDefaults::cacheNewAd(banner("cached", R"(, "zoneId": "a", "requestOptions": {"mCacheType": 1})"));
        VLDefaults::cacheNewAd(banner("b", R"(, "zoneId": "b", "requestOptions": {"mCacheType": 2})"));

        const auto found = VLDefaults::getValidCachedAdForZone(one.zone, one.options);
        EXPECT_EQ(found ? found->getId() : std::nullopt, one.found) << one.zone.value_or("any");
        EXPECT_EQ(cachedIds(), (std::vector<std::string>{"first", "no zone", "second", "cached", "b"}));
    }
    // Looking writes the list even when there is none.
    store().removeObjectForKey("cachedAds");
    EXPECT_EQ(VLDefaults::getValidCachedAdForZone("a", nullptr), nullptr);
    EXPECT_EQ(stored("cachedAds"), valueOf(R"({"cachedVelmoraAds": []})"));
}

TEST_F(Defaults, RemovingAnAdRemovesAllOfItsIdAndAllThatAreInvalid) {
    const UseManualClock clock;
    for (const char* id : {"a", "b", "a"}) VLDefaults::cacheNewAd(banner(id, ""));
    VLDefaults::cacheNewAd(banner("expired", R"(, "zoneId": "a")", kExpired));
    VLDefaults::cacheNewAd(read<VelmoraAd>(R"({"mAd": {"creative": {"ctaType": 2}}})"));
    VLDefaults::removeCachedAd(banner("a", "", kExpired));
    EXPECT_EQ(cachedIds(), (std::vector<std::string>{"b", "none"}));

    // Two absent ids are not equal.
    VLDefaults::removeCachedAd(read<VelmoraAd>(R"({"mAd": {}})"));
    EXPECT_EQ(cachedIds(), (std::vector<std::string>{"b", "none"}));
}

TEST_F(Defaults, WhatIsNotTheExpectedRecordIsNotWrittenOver) {
    const UseManualClock clock;
    const std::function<void()> changes[] = {
        [] { VLDefaults::cacheNewAd(banner("a", "")); },
        [] { VLDefaults::removeCachedAd(banner("a", "")); },
        [] { (void)VLDefaults::getValidCachedAdForZone(std::nullopt, nullptr); },
        [] { VLDefaults::addDoneAdSuggestion(std::make_shared<VLDoneAdSuggestion>()); },
        [] { VLDefaults::changeFinalStates([](const auto&) { ADD_FAILURE() << "nothing to change"; }); },
        [] { VLDefaults::removeFinalStatesByIds(std::vector<std::string>{"a"}); },
    };
    for (const char* text : {R"({"cachedVelmoraAds":[{"zoneId":)", "7"}) {
        for (const auto& change : changes) {
            for (const char* key : {"cachedAds", "cachedDoneAdSuggestions", "finalstates"})
                seenByOthers_.run("REPLACE INTO defaults(key, value) VALUES('" + std::string(key) + "', '" +
                                  text + "')");
            change();
            for (const char* key : {"cachedAds", "cachedDoneAdSuggestions", "finalstates"})
                EXPECT_EQ(seenByOthers_.valueOf(key), text) << key;
        }
    }
}

TEST_F(Defaults, ThreadsThatUseTheStoreAtOnceFindWholeValuesAndLoseNoChange) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 10;
    const auto use = [](int thread) {
        const std::string name(500, static_cast<char>('a' + thread));
        for (int round = 0; round < kRounds; ++round) {
            VLDefaults::setDeveloperKey(name);
            VLDefaults::setAuthorizationToken(name);
            VLDefaults::cacheNewAd(banner(name, ""));
            VLDefaults::addDoneAdSuggestion(std::make_shared<VLDoneAdSuggestion>());
            VLDefaults::changeFinalStates([](const VLFinalStatesModel& states) {
                states.getStates()->push_back(std::make_shared<VLAdSuggestionFinalState>());
            });
            for (const auto& text : {VLDefaults::getDeveloperKey(), VLDefaults::getAuthorization(),
                                     VLDefaults::getValidCachedAdForZone({}, {})->getId()}) {
                ASSERT_TRUE(text && *text == std::string(500, text->front()));
            }
        }
    };
    { const Threads threads(kThreads, use); }

    for (const auto count : {cachedIds().size(), VLDefaults::getDoneAdSuggestions()->size(),
                             VLDefaults::getFinalStates()->getStates()->size()}) {
        EXPECT_EQ(count, std::size_t{kThreads * kRounds});
    }
}

}  // namespace

}  // namespace velmora::test
