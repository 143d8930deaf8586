#include "device/VLMD5.h"
#include "device/VLUserExtraInfoModel.h"
#include "harness/Await.h"
#include "harness/Files.h"
#include "model/VLAdSuggestion.h"
#include "model/VLDirectCreativeModel.h"
#include "model/VLDoneAdSuggestion.h"
#include "model/VLFinalStatesModel.h"
#include "model/VLSuggestionListDirectResponseModel.h"
#include "net/VLInternetCacher.h"
#include "net/VLRequestBuilder.h"
#include "net/VLRequestQueue.h"
#include "net/VLRewardRequestJsonParams.h"
#include "net/VLWebServices.h"
#include "platform/FileManager.h"
#include "platform/Json.h"
#include "sandbox/ScriptedServer.h"
#include "store/VLDefaults.h"
#include "support/Application.h"
#include "support/Environment.h"
#include "support/ManualClock.h"
#include "support/OddUrls.h"

#include <atomic>
#include <chrono>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using sandbox::Script;
using sandbox::ScriptedServer;
using sandbox::SeenRequest;

using testing::ElementsAre;

std::vector<std::string> targets(const ScriptedServer& server) {
    std::vector<std::string> result;
    for (const auto& request : server.seen()) result.push_back(request.target);
    return result;
}

std::vector<std::string> finalStateIds() { return VLDefaults::getFinalStates()->getSuggestionIds(); }

void storeState(const char* id) {
    auto states = std::make_shared<VLFinalStatesModel>();
    states->setStates(makeList<VLAdSuggestionFinalState>({std::make_shared<VLAdSuggestionFinalState>(
        Property(Value(id)), VLFinalState::initial, std::nullopt)}));
    VLDefaults::setFinalStates(states);
}

std::shared_ptr<VLCachedRequestItem> item(const std::string& url, VLCallBackType type) {
    return VLRequestBuilder::createRequestForUrl(url, Dictionary{{"b", 1}}, VLHttpRequestMethod::post, type,
                                                 std::vector<std::string>{"s"}, std::nullopt)
        .request;
}

TEST(CachedRequest, ItGoesOutAsItWasBuiltAndClearsTheStoreBeforeItsCallback) {
    const ScriptedServer server([](const SeenRequest& request) {
        return Script::answer(std::atoi(request.target.c_str() + 1), "{}");
    });
    struct Case {
        VLCallBackType type;
        const char* path;
        std::int64_t end;
        bool removes;
    };
    constexpr auto kThree = static_cast<VLCallBackType>(3);
    for (const auto& one :
         {Case{VLCallBackType::rewardWithFinalStates, "/200", 200, true},
          Case{VLCallBackType::rewardWithFinalStates, "/500", -500, true},
          Case{VLCallBackType::rewardWithFinalStates, "/404", -404, false},
          Case{VLCallBackType::rewardWithoutFinalStates, "/200", 200, false},
          Case{VLCallBackType::rewardWithoutFinalStates, "/500", -500, false},
          Case{VLCallBackType::none, "/200", 200, false}, Case{VLCallBackType::none, "/500", -500, false},
          Case{kThree, "/200", 200, false}, Case{kThree, "/500", -500, false}}) {
        SCOPED_TRACE(std::to_string(static_cast<int>(one.type)) + one.path);
        storeState("s");
        const auto ends = std::make_shared<Await<std::pair<std::int64_t, bool>>>();
        const auto add = [ends](std::int64_t end) { ends->add({end, finalStateIds().empty()}); };
        const auto request = item(server.url(one.path), one.type);
        request->callBackFinalStateSuggestionIds = Value(Array{"another"});
        VLWebServices::callCachedRequest(request, add,
                                         [add](const VLClientError& error) { add(-error.responseCode()); });
        ASSERT_TRUE(ends->count(1));
        EXPECT_THAT(ends->values(), ElementsAre(std::pair(one.end, one.removes)));
        const auto seen = server.seen().back();
        EXPECT_EQ(seen.method + " " + seen.target + " " + seen.body,
                  std::string("POST ") + one.path + R"( {"b":1})");
        EXPECT_TRUE(seen.headers.contains("sdk-version"));
    }
    VLWebServices::callCachedRequest(nullptr, {}, {});

    const auto bare = VLRequestBuilder::createRequestForUrl(server.url("/200"), Dictionary{{"i", "n"}},
                                                            VLHttpRequestMethod::get)
                          .request;
    bare->setShouldIncludeCustomHeaders(false);
    Await<std::int64_t> end;
    VLWebServices::callCachedRequest(bare, [&](std::int64_t status) { end.add(status); }, {});
    ASSERT_TRUE(end.count(1));
    const auto seen = server.seen().back();
    EXPECT_EQ(seen.method + " " + seen.target + " " + seen.body, "GET /200?i=n ");
    EXPECT_FALSE(seen.headers.contains("sdk-version"));
}

TEST(WebServices, EachOperationHasItsMethodAddressHeadersAndResult) {
    const ScriptedServer server(
        [](const SeenRequest&) { return Script::answer(200, R"({"suggestions": [{}, {}]})"); });
    const Environment base("VELMORA_API_BASE_URL", server.url("/v2").c_str());
    const auto body = std::make_shared<VLRewardRequestJsonParams>();
    Await<std::string> ends;
    const auto onText = [&](const std::optional<std::string>& text) { ends.add(text.value_or("absent")); };
    const auto onList = [&](const std::shared_ptr<VLSuggestionListDirectResponseModel>& list) {
        ends.add(std::to_string(list->suggestions.get()->size()) + " suggestions");
    };
    const auto onFailure = [&](const VLClientError& error) {
        ends.add("failed " + std::to_string(error.responseCode()));
    };
    const auto url = server.url("/elsewhere?a=b");
    const char* text = R"({"suggestions": [{}, {}]})";
    struct Case {
        std::function<void()> call;
        std::string request;
        bool hasHeaders;
        bool hasBody;
        std::string end;
    };
    const std::vector<Case> cases{
        {[&] { VLWebServices::getAdSuggestionsWithBody(body, onList, onFailure); }, "POST /v2/suggestions/",
         true, true, "2 suggestions"},
        {[&] { VLWebServices::sendCrashReportWithBody(body, onText, onFailure); },
         "GET /v2/common/send-crash", false, false, text},
        {[&] { VLWebServices::callUrl(url, onText, onFailure); }, "GET /elsewhere?a=b", false, false, text},
        {[&] { VLWebServices::getCachingStrategyForZoneId("z", 1, 2, onList, onFailure); },
         "GET /v2/strategies/caching?doneCount=1&doingCount=2&zoneId=z", true, false, "2 suggestions"},
        {[&] { VLWebServices::getCachingStrategyForZoneId(std::nullopt, 1, 2, onList, onFailure); },
         "GET /v2/strategies/caching?doneCount=1&doingCount=2", true, false, "2 suggestions"},
    };
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const auto& one = cases[i];
        one.call();
        ASSERT_TRUE(ends.count(i + 1));
        EXPECT_EQ(ends.values().back(), one.end) << one.request;
        const auto seen = server.seen().back();
        EXPECT_EQ(seen.method + " " + seen.target, one.request);
        EXPECT_EQ(seen.headers.contains("sdk-version"), one.hasHeaders) << one.request;
        EXPECT_EQ(!seen.body.empty(), one.hasBody) << one.request;
    }
    EXPECT_THAT((std::vector{VLWebServices::getSuggestionSelectionUrl("abc"), VLWebServices::getRewardsUrl(),
                             VLWebServices::getTrackerReportUrl(), VLWebServices::getTokenUrl(),
                             VLWebServices::getVastUrlForZone("z1")}),
                ElementsAre(server.url("/v2/suggestions/abc/status/"),
                            server.url("/v2/suggestions/get-reward"),
                            server.url("/v2/suggestions/tracker/done"), server.url("/v2/token/"),
                            server.url("/v2/pre-roll/z1/vast")));
}

TEST(RequestQueue, ItSendsOneAtATimeInOrderAndTriesAFailedOneAgainAfterAMinute) {
    Application application;
    UseManualClock clock;
    std::atomic<int> failures = 1;
    const ScriptedServer server([&](const SeenRequest& request) {
        const bool fails = request.target == "/2" && failures-- > 0;
        return Script::answer(fails ? 404 : 200, "");
    });
    auto stored = std::make_shared<VLRequestQueueImpl>();
    stored->requests.set(makeList<VLCachedRequestItem>({item(server.url("/1"), VLCallBackType::none),
                                                        item(server.url("/2"), VLCallBackType::none),
                                                        item(server.url("/3"), VLCallBackType::none)}));
    VLDefaults::setRequestQueue(stored);

    const auto queue = VLRequestQueue::sharedRequestQueue();
    queue->addRequest(item(server.url("/never"), VLCallBackType::none));
    EXPECT_TRUE(application.runUntil([&] { return clock->waiting() == 1; }));
    clock->advance(std::chrono::milliseconds(59'900));
    EXPECT_EQ(clock->waiting(), 1U);
    clock->advance(std::chrono::milliseconds(100));
    EXPECT_EQ(clock->waiting(), 0U);
    EXPECT_TRUE(application.runUntil([&] { return !queue->isSendingLogs; }));
    EXPECT_THAT(targets(server), ElementsAre("/1", "/2", "/2", "/3"));
    EXPECT_EQ(VLDefaults::getRequestQueue()->count(), 3U);
}

TEST(RequestQueue, WhatIsBuiltAndQueuedNeverReachesIt) {
    VLDefaults::setRequestQueue(nullptr);
    VLRequestBuilder::queueSuggestion("s", VLReportedState::filled);
    VLRequestBuilder::queueGetReward(std::make_shared<VLRewardRequestJsonParams>(), true);
    VLRequestBuilder::queueNormalGetRequestForUrl("http://127.0.0.1:1/");
    EXPECT_EQ(VLDefaults::getRequestQueue()->count(), 0U);

    VLRequestQueueImpl list;
    list.addRequestToQueue(item("u", VLCallBackType::none));
    EXPECT_EQ(list.count(), 0U);
    EXPECT_TRUE(list.getRequests()->empty());
    list.addRequestToQueue(item("u", VLCallBackType::none));
    EXPECT_EQ(list.count(), 0U);
}

TEST(Suggestions, EachIsReportedOnceAndUnsuitableOnesAreDropped) {
    VLAdSuggestion suggestion;
    for (const auto& [before, after] :
         {std::pair(Property(), Property(true)), {Value(0), Value(true)}, {Value(7), Value(7)}}) {
        const auto reports = {&suggestion.filledReported, &suggestion.doingReported,
                              &suggestion.doneReported};
        for (auto* reported : reports) reported->set(before);
        suggestion.reportAdIsFilled();
        suggestion.reportAdIsDoing();
        suggestion.reportAdIsDoneWithFinalStates(nullptr);
        for (const auto* reported : reports) EXPECT_EQ(reported->get(), after);
    }

    auto value = platform::parseJson(R"({"suggestions": [
        {"suggestionId": "no creative"},
        {"suggestionId": "a", "creative": {"ctaType": 2, "ctaUrl": "u"}},
        {"suggestionId": "page", "creative": {"ctaType": 1, "ctaUrl": "u", "action": {"type": 2}}},
        {"creative": {"ctaType": 3, "ctaUrl": "u", "action": {"type": 1}}}]})");
    const auto list = recordFrom<VLSuggestionListDirectResponseModel>(value->if_object());
    EXPECT_EQ(list->extractFinalStateWithInitialState(VLFinalState::initial)->getStates()->size(), 4U);
    EXPECT_THAT(list->extractFinalStateWithInitialState(VLFinalState::initial)->getSuggestionIds(),
                ElementsAre("no creative", "a", "page"));
    EXPECT_TRUE(list->getUnnecessarySuggestionIds().empty());
    list->removeUnnecessaryAds();
    ASSERT_EQ(list->suggestions.get()->size(), 2U);
    EXPECT_EQ(list->suggestions.get()->front()->getSuggestionId(), "a");
    list->suggestions.set(nullptr);
    list->removeUnnecessaryAds();
    EXPECT_EQ(list->suggestions.get(), nullptr);
}

TEST(Suggestions, AShuffleKeepsEachOnceAndBringsEachToEachPlace) {
    auto value = platform::parseJson(
        R"({"suggestions": [{"suggestionId": "a"}, {"suggestionId": "b"}, {"suggestionId": "c"}]})");
    const auto list = recordFrom<VLSuggestionListDirectResponseModel>(value->if_object());
    std::set<std::string> orders;
    for (int i = 0; i < 300; ++i) {
        list->shuffleSuggestions();
        std::string order;
        for (const auto& one : *list->suggestions.get()) order += one->getSuggestionId().value_or("-");
        orders.insert(order);
    }
    EXPECT_THAT(orders, ElementsAre("abc", "acb", "bac", "bca", "cab", "cba"));
}

TEST(InternetCacher, AFileIsFetchedOnceAndNeverLeavesItsFolder) {
    const ScriptedServer server([](const SeenRequest&) { return Script::answer(404, "a page instead"); });
    const auto ends = std::make_shared<Await<std::string>>();
    const auto get = [&](const std::optional<std::string>& url, const std::optional<std::string>& name) {
        const auto before = ends->values().size();
        VLInternetCacher::sharedCacher().getFileAsyncFromUrl(
            url, name, [ends](const std::string&, const std::string& path) { ends->add(path); },
            [ends](const std::optional<std::string>&, const std::string& message) { ends->add(message); });
        EXPECT_TRUE(ends->count(before + 1));
        return ends->values().back();
    };
    const auto folder = platform::FileManager::documentsDirectory();
    for (const auto& name : {std::optional<std::string>(), std::optional<std::string>(".."),
                             std::optional<std::string>("a/b"), std::optional(std::string("a\0b", 3))}) {
        EXPECT_EQ(get(server.url("/v"), name), "Invalid file name");
    }
    EXPECT_EQ(get(std::nullopt, "v.mp4"), "Invalid file name");
    EXPECT_EQ(get(server.url("/v"), ""), folder.string());
    for (const auto& url : noUrls(server.url("/v")))
        EXPECT_EQ(get(url, "v.mp4"), "Video file download failed") << url;
    EXPECT_TRUE(server.seen().empty());
    for (const auto& url : oddUrls(server.url("/v")))
        EXPECT_EQ(get(url, VLMD5(url)), (folder / VLMD5(url).value()).string()) << url;
    const auto odd = server.seen().size();
    EXPECT_EQ(odd, oddUrls("").size());
    EXPECT_EQ(get("http://127.0.0.1:1/v", "v.mp4"), "Video file download failed");
    EXPECT_EQ(get(server.url("/v"), "v.mp4"), (folder / "v.mp4").string());
    bool isTold = false;
    VLInternetCacher::sharedCacher().getFileAsyncFromUrl(
        server.url("/other"), "v.mp4", [&](const std::string&, const std::string&) { isTold = true; }, {});
    EXPECT_TRUE(isTold) << "before it returns, for a file that is there";
    const auto lock = VLInternetCacher::sharedCacher().getLockForFileName((folder / "v.mp4").string());
    EXPECT_TRUE(lock->tryLock());
    EXPECT_EQ(contentOf(folder / "v.mp4"), "a page instead");

    // The folder itself is no file to fetch, whether it is there or cannot be made.
    const Environment nowhere("XDG_DATA_HOME", "/proc/nowhere");
    for (const char* name : {"", "."})
        EXPECT_EQ(get(server.url("/v"), name), "Video file download failed") << name;
    EXPECT_EQ(server.seen().size(), odd + 1);
}

TEST(InternetCacher, TwoDownloadsOfOneNameBothRunAndLeaveOneWholeFile) {
    Await<std::string> asked;
    const ScriptedServer server([&](const SeenRequest& request) {
        asked.add(request.target);
        EXPECT_TRUE(asked.count(2)) << "one waits for the other";
        return Script::answer(200, std::string(100'000, request.target.back()));
    });
    Await<std::string> ends;
    for (const auto* path : {"/a", "/b"}) {
        VLInternetCacher::sharedCacher().getFileAsyncFromUrl(
            server.url(path), "same",
            [&](const std::string& url, const std::string& file) { ends.add(url + " " + file); },
            [&](const std::optional<std::string>&, const std::string& message) { ends.add(message); });
    }
    ASSERT_TRUE(ends.count(2));
    const auto file = platform::FileManager::documentsDirectory() / "same";
    EXPECT_THAT(ends.values(), testing::UnorderedElementsAre(server.url("/a ") + file.string(),
                                                             server.url("/b ") + file.string()));
    const auto content = contentOf(file);
    EXPECT_EQ(content.size(), 100'000U);
    EXPECT_EQ(content.find_first_not_of(content.front()), std::string::npos);
}

TEST(DeviceFacts, DigestsAndTheSharedDescriptionFollowTheirRules) {
    EXPECT_EQ(VLMD5("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(VLMD5(std::string("abc\0def", 7)), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(VLMD5(""), "");
    EXPECT_EQ(VLMD5(std::nullopt), std::nullopt);
    EXPECT_EQ(VLUserExtraInfoModel::getInstance(), nullptr);
}

}  // namespace

}  // namespace velmora::test
