#include "device/VLMD5.h"
#include "device/VLUserExtraInfoModel.h"
#include "model/VLAdSuggestion.h"
#include "model/VLDefaults.h"
#include "model/VLDirectCreativeModel.h"
#include "model/VLDoneAdSuggestion.h"
#include "model/VLFinalStatesModel.h"
#include "model/VLRewardRequestJsonParams.h"
#include "model/VLSuggestionListDirectResponseModel.h"
#include "net/VLInternetCacher.h"
#include "net/VLRequestBuilder.h"
#include "net/VLRequestQueue.h"
#include "net/VLWebServices.h"
#include "platform/FileManager.h"
#include "platform/Json.h"
#include "support/Await.h"
#include "support/ManualClock.h"
#include "support/OddUrls.h"
#include "support/ScriptedServer.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <thread>

#include <QCoreApplication>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::test {

namespace {

using testing::ElementsAre;

std::vector<std::string> targets(const ScriptedServer& server) {
    std::vector<std::string> result;
    for (const auto& request : server.seen()) result.push_back(request.target);
    return result;
}

std::vector<std::string> finalStateIds() { return VLDefaults::getFinalStates()->getSuggestionIds(); }

void storeState(const char* id) {
    auto states = std::make_shared<VLFinalStatesModel>();
    states->setStates(makeList<VLAdSuggestionFinalState>(
        {std::make_shared<VLAdSuggestionFinalState>(Property(Value(id)), 2, std::nullopt)}));
    VLDefaults::setFinalStates(states);
}

std::shared_ptr<VLCachedRequestItem> item(const std::string& url, VLCallBackType type) {
    return VLRequestBuilder::createRequestForUrl(url, Dictionary{{"b", 1}}, VLHttpRequestMethod::post, type,
                                                 std::vector<std::string>{"s"}, std::nullopt)
        .request;
}

TEST(CachedRequest, WhatItReportedLeavesTheStoreAfterASuccessAndAfterA500) {
    const ScriptedServer server([](const SeenRequest& request) {
        return Script::answer(std::atoi(request.target.c_str() + 1), "{}");
    });
    struct Case {
        VLCallBackType type;
        const char* path;
        bool succeeds;
        bool removes;
    };
    for (const auto& one : {Case{VLCallBackType::rewardWithFinalStates, "/200", true, true},
                            Case{VLCallBackType::rewardWithFinalStates, "/500", false, true},
                            Case{VLCallBackType::rewardWithFinalStates, "/404", false, false},
                            Case{VLCallBackType::rewardWithoutFinalStates, "/200", true, false},
                            Case{static_cast<VLCallBackType>(7), "/200", true, false}}) {
        storeState("s");
        const auto ends = std::make_shared<Await<bool>>();
        VLWebServices::callCachedRequest(
            item(server.url(one.path), one.type), [ends](std::int64_t) { ends->add(true); },
            [ends](const VLClientError&) { ends->add(false); });
        ASSERT_TRUE(ends->count(1));
        EXPECT_EQ(ends->values().front(), one.succeeds) << one.path;
        EXPECT_EQ(finalStateIds().empty(), one.removes) << one.path;
    }
    VLWebServices::callCachedRequest(nullptr, {}, {});
}

TEST(RequestQueue, ItSendsOneAtATimeInOrderAndTriesAFailedOneAgainAfterAMinute) {
    int argumentCount = 0;
    QCoreApplication application(argumentCount, nullptr);
    UseManualClock clock;
    std::atomic<int> failures = 1;
    const ScriptedServer server([&](const SeenRequest& request) {
        const bool fails = request.target == "/2" && failures-- > 0;
        return Script::answer(fails ? 404 : 200, "");
    });
    const auto until = [&](std::size_t count) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (server.seen().size() < count && std::chrono::steady_clock::now() < end) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        }
    };
    auto stored = std::make_shared<VLRequestQueueImpl>();
    stored->requests.set(makeList<VLCachedRequestItem>({item(server.url("/1"), VLCallBackType::none),
                                                        item(server.url("/2"), VLCallBackType::none),
                                                        item(server.url("/3"), VLCallBackType::none)}));
    VLDefaults::setRequestQueue(stored);

    const auto queue = VLRequestQueue::sharedRequestQueue();
    until(2);
    queue->addRequest(item(server.url("/never"), VLCallBackType::none));
    // The wait begins once the failure has been reported.
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (server.seen().size() < 4 && std::chrono::steady_clock::now() < end) {
        clock->advance(std::chrono::seconds(60));
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    until(4);
    EXPECT_THAT(targets(server), ElementsAre("/1", "/2", "/2", "/3"));
    EXPECT_EQ(VLDefaults::getRequestQueue()->count(), 3U);
}

TEST(RequestQueue, WhatIsBuiltAndQueuedNeverReachesIt) {
    VLDefaults::setRequestQueue(nullptr);
    VLRequestBuilder::queueSuggestion("s", 5);
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

    const auto value = platform::parseJson(R"({"suggestions": [
        {"suggestionId": "no creative"},
        {"suggestionId": "a", "creative": {"ctaType": 2, "ctaUrl": "u"}},
        {"suggestionId": "page", "creative": {"ctaType": 1, "ctaUrl": "u", "action": {"type": 2}}},
        {"creative": {"ctaType": 3, "ctaUrl": "u", "action": {"type": 1}}}]})");
    const auto list = recordFrom<VLSuggestionListDirectResponseModel>(value->if_object());
    EXPECT_EQ(list->extractFinalStateWithInitialState(2)->getStates()->size(), 4U);
    EXPECT_THAT(list->extractFinalStateWithInitialState(2)->getSuggestionIds(),
                ElementsAre("no creative", "a", "page"));
    EXPECT_TRUE(list->getUnnecessarySuggestionIds().empty());
    list->removeUnnecessaryAds();
    ASSERT_EQ(list->suggestions.get()->size(), 2U);
    EXPECT_EQ(list->suggestions.get()->front()->getSuggestionId(), "a");
}

TEST(Suggestions, AShuffleKeepsEachOnceAndBringsEachToEachPlace) {
    const auto value = platform::parseJson(
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
    EXPECT_EQ(get(server.url("/other"), "v.mp4"), (folder / "v.mp4").string());
    EXPECT_EQ(server.seen().size(), odd + 1);
    std::string content;
    std::getline(std::ifstream(folder / "v.mp4"), content);
    EXPECT_EQ(content, "a page instead");
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
