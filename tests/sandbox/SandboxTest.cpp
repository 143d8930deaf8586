#include "sandbox/Sandbox.h"

#include "harness/Await.h"
#include "harness/Files.h"
#include "harness/TemporaryDirectory.h"
#include "model/VLFinalStatesModel.h"
#include "model/VLSuggestionListDirectResponseModel.h"
#include "net/VLDirectAdSuggestionRequestJsonParams.h"
#include "net/VLRequestHeaders.h"
#include "net/VLWebServices.h"
#include "sandbox/Zones.h"
#include "store/VLDefaults.h"
#include "support/Environment.h"
#include "support/Exchange.h"
#include "support/LastEntry.h"
#include "support/Records.h"
#include "support/Threads.h"

#include <set>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

namespace json = boost::json;
using sandbox::Sandbox;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::StartsWith;

using Headers = std::map<std::string, std::string>;

/// What the library sends with the key "a1".
Headers goodHeaders() {
    VLDefaults::setDeveloperKey("a1");
    const auto sent = VLRequestHeaders::getHeaders();
    Headers headers(sent.begin(), sent.end());
    headers["content-type"] = headers["accept"] = "application/json";
    return headers;
}

Headers with(Headers headers, const std::string& name, const std::string& value) {
    headers[name] = value;
    return headers;
}

Headers admitted(const Sandbox& service) {
    const auto token = ask({.url = service.plainUrl("/v2/token/"), .headers = goodHeaders()}).json();
    return with(goodHeaders(), "authorization", "bearer " + std::string(token.at("token").as_string()));
}

json::object offer(const Sandbox& service, const Headers& headers, const std::string& body) {
    return ask({.url = service.plainUrl("/v2/suggestions/"),
                .method = "POST",
                .headers = headers,
                .body = body})
        .json();
}

TEST(Sandbox, WhatItGuardsOpensToATokenOfTheSameKeyUntilItExpires) {
    Sandbox service;
    const TemporaryDirectory folder;
    const auto authority = (folder / "ca.pem").string();
    writeContent(authority, service.authority());
    const auto status = [&](const std::string& method, const std::string& path, const Headers& headers) {
        return ask({.url = service.apiUrl() + path,
                    .method = method,
                    .headers = headers,
                    .body = method == "POST" ? R"({"newState": 2})" : "",
                    .authorityFile = authority})
            .status;
    };
    const auto good = admitted(service);
    for (const auto& [method, path] :
         {std::pair("POST", "/suggestions/"), std::pair("POST", "/suggestions/video-1/status/"),
          std::pair("POST", "/suggestions/get-reward"), std::pair("GET", "/suggestions/get-reward"),
          std::pair("POST", "/suggestions/tracker/done"), std::pair("GET", "/strategies/caching")}) {
        EXPECT_EQ(status(method, path, goodHeaders()), 401) << path;
        EXPECT_EQ(status(method, path, with(good, "developer-key", "b")), 401) << path;
        EXPECT_EQ(status(method, path, good), 200) << path;
    }
    for (const char* path : {"/common/send-crash", "/pre-roll/video/vast"})
        EXPECT_EQ(status("GET", path, {}), 200);
    service.expireTokens();
    EXPECT_EQ(status("POST", "/suggestions/", good), 401);

    const Sandbox forgetful({.tokenLifetime = std::chrono::seconds(0)});
    EXPECT_TRUE(offer(forgetful, admitted(forgetful), "{}").contains("error"));
}

TEST(Sandbox, AUserIsNamedOnceAndTheLastStateOfEachSuggestionIsKept) {
    const Sandbox service;
    const auto headers = admitted(service);
    const auto user = std::string(offer(service, headers, "{}").at("velmoraUserId").as_string());
    EXPECT_THAT(user, StartsWith("user-"));
    EXPECT_NE(user, offer(service, headers, "{}").at("velmoraUserId").as_string());

    const auto known = with(headers, "t-user-id", user);
    const auto posted = [](const std::string& states) {
        return R"({"zoneId": "video", "finalStatesRequest": {"states": [)" + states + "]}}";
    };
    offer(service, known, posted(R"({"suggestionId": "a", "state": 2}, {"suggestionId": "b", "state": 2})"));
    const auto again = offer(service, known, posted(R"({"suggestionId": "a", "state": 3})"));
    EXPECT_EQ(again.at("velmoraUserId").as_string(), user);
    EXPECT_EQ(json::serialize(service.ledger().at("finalStates")),
              "{\"" + user + R"(":[{"suggestionId":"a","state":3},{"suggestionId":"b","state":2}]})");

    const auto reward =
        ask({.url = service.plainUrl("/v2/suggestions/get-reward"),
             .method = "POST",
             .headers = known,
             .body = R"({"doneSuggestions": [{"suggestionId": "a"}, {"suggestionId": "b"}]})"});
    EXPECT_EQ(reward.body, R"({"awardedCoin":2})");
}

TEST(Sandbox, WhatIsWrongWithTheHeadersIsSaidInWords) {
    const Sandbox service;
    const auto problemsWith = [&](const Headers& headers) {
        ask({.url = service.plainUrl("/v2/token/"), .headers = headers});
        return lastProblems(service);
    };
    EXPECT_THAT(problemsWith(goodHeaders()), IsEmpty());
    const std::vector<std::array<std::string, 3>> cases{
        {"sdk-version", "2.9", "sdk-version is \"2.9\", not 3.0.0"},
        {"device-imei", "device-1org.example.app146direct",
         "device-imei is \"device-1org.example.app146direct\""},
        {"device-client-date", "1700000000", "device-client-date is \"1700000000\", not 13 digits"},
        {"device-client-date", "1000000000000", "device-client-date is \"1000000000000\", not 13 digits"},
        {"authorization", "Bearer x", "authorization is \"Bearer x\", not \"bearer\""},
        {"content-type", "text/plain", "content-type is \"text/plain\", not application/json"},
    };
    for (const auto& [name, value, problem] : cases) {
        EXPECT_THAT(problemsWith(with(goodHeaders(), name, value)), ElementsAre(StartsWith(problem)));
    }
    auto few = goodHeaders();
    few.erase("secret-token");
    EXPECT_THAT(problemsWith(few), ElementsAre("secret-token is missing"));
    EXPECT_EQ(service.ledger().at("problems").as_uint64(), cases.size() + 1);
}

TEST(Sandbox, WhatIsWrongWithTheBodyOfASuggestionRequestIsSaidInWords) {
    const Sandbox service;
    const auto headers = admitted(service);
    const std::string states = R"("finalStatesRequest": {"states": []})";
    const auto withState = [](const std::string& state) {
        return R"("clientRequestedCacheType": 1, "finalStatesRequest": {"states": [)" + state + "]}";
    };
    const struct {
        std::string body;
        std::vector<std::string> problems;
    } cases[] = {
        {R"("clientRequestedCacheType": 2, "zoneId": "z", )" + states, {}},
        {withState(R"({"suggestionId": "a", "state": 3, "extraInfo": {"passedDuration": "0"}})"), {}},
        {"", {"clientRequestedCacheType is missing", "finalStatesRequest is missing"}},
        {R"("clientRequestedCacheType": 3, "zoneId": "", )" + states,
         {"clientRequestedCacheType is 3, not 1 or 2", "zoneId is \"\", not some text"}},
        {R"("clientRequestedCacheType": "1", "zoneId": 7, )" + states,
         {"clientRequestedCacheType is \"1\", not 1 or 2", "zoneId is 7, not some text"}},
        {R"("clientRequestedCacheType": 1, "userExtraInfo": {}, )" + states, {"userExtraInfo is not known"}},
        {R"("clientRequestedCacheType": 1, "finalStatesRequest": [])",
         {"finalStatesRequest is [], not an object"}},
        {R"("clientRequestedCacheType": 1, "finalStatesRequest": {"state": 1})",
         {"finalStatesRequest.states is missing", "finalStatesRequest.state is not known"}},
        {withState("7"), {"finalStatesRequest.states is [7], not a list of objects"}},
        {withState(R"({"suggestionId": 7, "state": 5, "extraInfo": "", "more": 1})"),
         {"states[0].suggestionId is 7, not some text", "states[0].state is 5, not 1, 2 or 3",
          "states[0].extraInfo is \"\", not an object", "states[0].more is not known"}},
    };
    std::size_t problems = 0;
    for (const auto& one : cases) {
        offer(service, headers, "{" + one.body + "}");
        EXPECT_THAT(lastProblems(service), ElementsAreArray(one.problems)) << one.body;
        problems += one.problems.size();
    }
    EXPECT_EQ(service.ledger().at("problems").as_uint64(), problems);
}

TEST(Sandbox, TheLibraryItselfGivesNoCauseForComplaint) {
    const Sandbox service;
    const Environment base("VELMORA_API_BASE_URL", service.plainApiUrl().c_str());
    VLDefaults::setDeveloperKey("key \xC3\xBC 1");
    const auto ends = std::make_shared<Await<std::size_t>>();
    VLWebServices::getAdSuggestionsWithBody(
        std::make_shared<VLDirectAdSuggestionRequestJsonParams>(
            2, "random",
            read<VLFinalStatesModel>(R"({"states": [{"suggestionId": "a", "state": 2, "extraInfo": {}}]})"),
            nullptr),
        [ends](const auto& list) { ends->add(list->suggestions.get()->size()); },
        [ends](const VLClientError&) { ends->add(0); });
    ASSERT_TRUE(ends->count(1));
    EXPECT_THAT(ends->values(), ElementsAre(5U));
    EXPECT_TRUE(service.await("suggestions", 2, std::chrono::seconds(0)));
    EXPECT_EQ(json::serialize(lastEntry(service).at("problems")), "[]");
    EXPECT_EQ(service.ledger().at("problems").as_uint64(), 0U);
}

class SandboxZones : public testing::Test {
protected:
    void SetUp() override {
        for (const char* name : {"video", "rewarded-video", "skippable-video", "expiring", "portrait"})
            writeContent(folder_ / (std::string(name) + ".mp4"), "0123456789");
    }

    TemporaryDirectory folder_;
    Sandbox service_{{.videos = folder_.path(), .expiringAfter = std::chrono::milliseconds(70)}};
};

TEST_F(SandboxZones, EachOffersItsAdsAtAddressesThatAnswer) {
    const auto headers = admitted(service_);
    std::set<std::string> ids;
    std::size_t suggestions = 0;
    for (const auto& zone : sandbox::allZones()) {
        SCOPED_TRACE(zone.name);
        const auto list = offer(service_, headers, R"({"zoneId": ")" + std::string(zone.name) + "\"}");
        EXPECT_EQ(list.at("selectDirectAdRandomly").as_bool(), zone.inRandomOrder);
        const auto& offered = list.at("suggestions").as_array();
        EXPECT_EQ(offered.size(), zone.creatives.size());
        for (const auto& suggestion : offered) {
            const std::string url(suggestion.at("creative").at("ctaUrl").as_string());
            EXPECT_EQ(ask({.url = url}).status, 200) << url;
            EXPECT_EQ(suggestion.as_object().contains("expirationTimeInMillis"), zone.expires);
            ids.insert(std::string(suggestion.at("suggestionId").as_string()));
            ++suggestions;
        }
    }
    EXPECT_EQ(ids.size(), suggestions);
}

TEST_F(SandboxZones, AVideosPageAndTrackersAnswerAndNameTheZone) {
    const auto list = offer(service_, admitted(service_), R"({"zoneId": "rewarded-video"})");
    const auto& creative = list.at("suggestions").at(0).at("creative").as_object();
    EXPECT_EQ(creative.at("action").at("type").to_number<int>(), 1);
    std::vector<std::string> urls{std::string(creative.at("action").at("actionUrl").as_string())};
    for (const auto& [name, list_] : creative.at("vastTrackingData").as_object()) {
        for (const auto& item : list_.as_array())
            urls.emplace_back(item.is_string() ? item.as_string() : item.at("second").as_string());
    }
    EXPECT_EQ(urls.size(), 1U + 11U + 3U);
    for (const auto& url : urls) {
        EXPECT_EQ(ask({.url = url}).status, 200) << url;
        EXPECT_EQ(lastEntry(service_).at("zone").as_string(), "rewarded-video") << url;
    }
}

TEST_F(SandboxZones, APartOfAVideoComesWithStatus206) {
    const auto url = service_.plainUrl("/media/video.mp4");
    const std::vector<std::array<std::string, 3>> cases{
        {"bytes=2-4", "206 234", "bytes 2-4/10"},
        {"bytes=7-", "206 789", "bytes 7-9/10"},
        {"bytes=-3", "206 789", "bytes 7-9/10"},
        {"bytes=8-99", "206 89", "bytes 8-9/10"},
    };
    for (const auto& [range, expected, contentRange] : cases) {
        auto answer = ask({.url = url, .headers = {{"range", range}}});
        EXPECT_EQ(std::to_string(answer.status) + " " + answer.body, expected) << range;
        EXPECT_EQ(answer.headers["Content-Range"], contentRange) << range;
        EXPECT_EQ(answer.headers["Content-Type"], "video/mp4");
    }
    auto outside = ask({.url = url, .headers = {{"range", "bytes=10-"}}});
    EXPECT_EQ(outside.status, 416);
    EXPECT_EQ(outside.headers["Content-Range"], "bytes */10");
    for (const char* path : {"/media/none.mp4", "/media/..%2Fvideo.mp4", "/media/..", "/media/.hidden"})
        EXPECT_EQ(ask({.url = service_.plainUrl(path)}).status, 404) << path;
}

TEST(Sandbox, TheLedgerKeepsTheLastEntriesAndAnswersFromANumberOn) {
    Sandbox service({.mostLedgerEntries = 3});
    EXPECT_FALSE(service.await("tracker", 1, std::chrono::milliseconds(0)));
    for (int i = 1; i <= 5; ++i)
        ask({.url = service.plainUrl("/track/video-" + std::to_string(i) + "/start")});
    const auto paths = [&](const std::string& query) {
        std::vector<std::string> list;
        const auto answer = ask({.url = service.plainUrl("/sandbox/ledger" + query)}).json();
        for (const auto& entry : answer.at("entries").as_array())
            list.emplace_back(entry.at("path").as_string());
        return list;
    };
    EXPECT_THAT(paths(""),
                ElementsAre("/track/video-3/start", "/track/video-4/start", "/track/video-5/start"));
    EXPECT_THAT(paths("?after=4"), ElementsAre("/track/video-5/start"));
    EXPECT_TRUE(service.await("tracker", 3));

    ask({.url = service.plainUrl("/v2/suggestions/"),
         .method = "POST",
         .headers = goodHeaders(),
         .body = std::string(100'000, 'x')});
    EXPECT_EQ(lastEntry(service).at("body").as_string().size(), 65536U);
    ask({.url = service.plainUrl("/sandbox/reset"), .method = "POST"});
    EXPECT_THAT(paths(""), IsEmpty());
    EXPECT_EQ(service.ledger().at("problems").as_uint64(), 0U);
    EXPECT_EQ(service.ledger().at("oldest").as_uint64(), 7U);
}

TEST(Sandbox, AWrongAddressOrMethodIsAnsweredInWords) {
    const Sandbox service;
    struct Case {
        std::string method;
        std::string path;
        long status;
        std::string error;
    };
    const std::vector<Case> cases{
        {"GET", "/v2/nothing", 404, "There is nothing at /v2/nothing"},
        {"POST", "/v2/suggestions", 404,
         "There is nothing at /v2/suggestions; did you mean /v2/suggestions/?"},
        {"GET", "/v2/suggestions/", 405, "GET is no method of /v2/suggestions/, which takes POST"},
        {"PUT", "/v2/suggestions/get-reward", 405,
         "PUT is no method of /v2/suggestions/get-reward, which takes GET, POST"},
    };
    for (const auto& one : cases) {
        const auto answer = ask({.url = service.plainUrl(one.path), .method = one.method, .body = "{}"});
        EXPECT_EQ(answer.status, one.status);
        EXPECT_EQ(answer.json().at("error").as_string(), one.error);
        EXPECT_EQ(lastEntry(service).at("status").as_int64(), one.status);
    }
}

TEST(Sandbox, ManyClientsAtOnceAreAllAnsweredAndWrittenDown) {
    constexpr int clients = 16;
    constexpr int rounds = 25;
    const Sandbox service;
    const auto headers = admitted(service);
    {
        const Threads threads(clients, [&](int) {
            for (int round = 0; round < rounds; ++round)
                offer(service, headers, R"({"finalStatesRequest": {"states": [{"suggestionId": 1}]}})");
        });
    }
    EXPECT_TRUE(service.await("suggestions", clients * rounds, std::chrono::seconds(0)));
    EXPECT_EQ(service.ledger().at("finalStates").as_object().size(), std::size_t{clients * rounds});
}

TEST(Sandbox, ItEndsAtOnceThoughAClientHoldsItsConnection) {
    Client client;
    const auto start = std::chrono::steady_clock::now();
    {
        const Sandbox service;
        EXPECT_EQ(client.ask({.url = service.plainUrl("/track/video-1/start")}).status, 200);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    EXPECT_THROW(
        {
            const Sandbox service;
            const Sandbox second({.httpPort = std::stoi(
                                      service.plainUrl("").substr(std::string("http://127.0.0.1:").size()))});
        },
        std::runtime_error);
}

}  // namespace

}  // namespace velmora::test
