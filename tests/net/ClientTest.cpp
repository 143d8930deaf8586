#include "net/VLClient.h"

#include "harness/Await.h"
#include "model/VLRewardResponseModel.h"
#include "net/VLRequestHeaders.h"
#include "net/VLWebServices.h"
#include "sandbox/ScriptedServer.h"
#include "store/VLDefaults.h"
#include "support/Certificates.h"
#include "support/LogCapture.h"

#include <atomic>
#include <cstdlib>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using sandbox::Script;
using sandbox::ScriptedServer;
using sandbox::SeenRequest;

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Key;
using testing::Not;
using testing::Pair;

/// What a request came to, in words: "200 <text>", "200 record", or "failed <status> <whether the exchange
/// broke off>".
using Ends = Await<std::string>;

VLClientSuccess success(const std::shared_ptr<Ends>& ends) {
    return [ends](std::int64_t status, const VLResult& result) {
        const auto record = resultAs<VLRewardResponseModel>(result);
        const auto text = resultAsText(result).value_or("not text");
        ends->add(std::to_string(status) + " " +
                  (record ? "coins " + std::to_string(platform::asInteger(record->awardedCoin)) : text));
    };
}

VLClientFailure failure(const std::shared_ptr<Ends>& ends) {
    return [ends](const VLClientError& error) {
        ends->add("failed " + std::to_string(error.responseCode()) +
                  (error.connectionError() ? " broken off" : ""));
    };
}

class ClientTest : public testing::Test {
protected:
    void SetUp() override {
        ::setenv("VELMORA_CA_FILE", certificates_->authorityFile().c_str(), 1);
        ::setenv("VELMORA_API_BASE_URL", server_.url("/v2").c_str(), 1);
        VLDefaults::setAuthorizationToken(std::nullopt);
    }
    void TearDown() override { ::unsetenv("VELMORA_API_BASE_URL"); }

    static std::string send(VLCall call, VLRetryMode retry = VLRetryMode::none) {
        const auto ends = std::make_shared<Ends>();
        call.success = success(ends);
        call.failure = failure(ends);
        VLClient::sendRequestOfMethod(call, retry);
        EXPECT_TRUE(ends->count(1));
        return ends->values().front();
    }

    [[nodiscard]] std::string get(const std::string& path, const VLReceive& receive = {}) const {
        return send({.url = server_.url(path), .receive = receive});
    }

    std::atomic<int> unauthorized_ = 0;
    std::atomic<int> tokenStatus_ = 200;
    std::shared_ptr<Certificates> certificates_ = Certificates::makeFor("127.0.0.1");
    ScriptedServer server_{[this](const SeenRequest& request) {
                               if (request.target == "/v2/token/")
                                   return Script::answer(tokenStatus_, R"({"token": "fresh"})");
                               if (request.target == "/v2/guarded" && unauthorized_-- > 0)
                                   return Script::answer(401, "who are you");
                               if (request.target == "/v2/coins")
                                   return Script::answer(200, R"({"awardedCoin": 3})");
                               if (request.target == "/v2/not-json") return Script::answer(200, "<html>");
                               if (request.target == "/v2/cut-short")
                                   return Script{.bytes = "HTTP/1.1 200 OK\r\nServer: s\r\n"};
                               if (request.target == "/v2/hangs")
                                   return Script{.bytes = "HTTP/1.1", .hang = true};
                               if (request.target == "/v2/201") return Script::answer(201, "made");
                               return Script::answer(200, "text");
                           },
                           certificates_};
};

TEST_F(ClientTest, ARequestCarriesItsMethodParametersBodyAndHeaders) {
    const auto url = server_.url("/v2/x");
    const std::string body = R"({"a":1})";
    send({.url = url, .params = Dictionary{{"a", "x y"}, {"n", 25.0}}, .body = body});
    send({.method = VLHttpRequestMethod::post, .url = url, .body = body, .includeCustomHeaders = true});
    send({.method = VLHttpRequestMethod::put, .url = url, .params = Dictionary(), .body = body});
    send({.method = static_cast<VLHttpRequestMethod>(7), .url = url, .body = body});

    const auto seen = server_.seen();
    ASSERT_EQ(seen.size(), 4U);
    EXPECT_EQ(seen[0].method + " " + seen[0].target + " " + seen[0].body, "GET /v2/x?a=x%20y&n=25 ");
    EXPECT_THAT(seen[0].headers,
                AllOf(Not(Contains(Key("content-length"))), Not(Contains(Key("sdk-version")))));
    EXPECT_EQ(seen[1].method + " " + seen[1].body, R"(POST {"a":1})");
    EXPECT_THAT(seen[1].headers,
                AllOf(Contains(Pair("content-length", "7")),
                      Contains(Pair("content-type", "application/json")),
                      Contains(Pair("accept", "application/json")), Contains(Pair("sdk-version", "3.0.0"))));
    EXPECT_EQ(seen[2].method + " " + seen[2].target + " " + seen[2].body, R"(PUT /v2/x? {"a":1})");
    EXPECT_EQ(seen[3].method + " " + seen[3].body, "UNKNOWN ");
}

TEST_F(ClientTest, OnlyAnAnswerWithStatus200IsASuccess) {
    const auto coins = receive<VLRewardResponseModel>();
    EXPECT_EQ(get("/v2/coins", coins), "200 coins 3");
    EXPECT_EQ(get("/v2/not-json", coins), "200 coins 0");
    EXPECT_EQ(get("/v2/not-json"), "200 <html>");
    EXPECT_EQ(get("/v2/201"), "failed 201");
    EXPECT_EQ(get("/v2/cut-short"), "failed 200 broken off");
    EXPECT_EQ(send({.url = "http://127.0.0.1:1/"}), "failed -1 broken off");

    const auto ends = std::make_shared<Ends>();
    VLClient::sendRequestOfMethod({.url = server_.url("/v2/x"), .failure = failure(ends)});
    ASSERT_TRUE(ends->count(1));
    EXPECT_THAT(ends->values(), ElementsAre("failed 200"));
}

TEST_F(ClientTest, A401IsTriedAgainOnceAsTheModeSays) {
    struct Case {
        VLRetryMode mode;
        int unauthorized;
        int tokenStatus;
        std::string end;
        std::vector<std::string> targets;
    };
    const std::string guarded = "/v2/guarded";
    const std::string token = "/v2/token/";
    const std::vector<Case> cases{
        {VLRetryMode::none, 1, 200, "failed 401", {guarded}},
        {VLRetryMode::withNewToken, 1, 200, "200 text", {guarded, token, guarded}},
        {VLRetryMode::withNewToken, 2, 200, "failed 401", {guarded, token, guarded}},
        {VLRetryMode::withNewToken, 1, 403, "failed 403", {guarded, token}},
        {VLRetryMode::asItStands, 1, 200, "200 text", {guarded, guarded}},
        {VLRetryMode::asItStands, 2, 200, "failed 401", {guarded, guarded}},
        {static_cast<VLRetryMode>(9), 1, 200, "failed 401", {guarded}},
    };
    VLDefaults::setDebugMode(true);
    const LogCapture log;
    std::size_t before = 0;
    for (const auto& one : cases) {
        VLDefaults::setAuthorizationToken(std::nullopt);
        unauthorized_ = one.unauthorized;
        tokenStatus_ = one.tokenStatus;
        EXPECT_EQ(send({.method = VLHttpRequestMethod::post,
                        .url = server_.url(guarded),
                        .body = "{}",
                        .includeCustomHeaders = true},
                       one.mode),
                  one.end);
        const auto seen = server_.seen();
        std::vector<std::string> targets;
        for (auto i = before; i < seen.size(); ++i) targets.push_back(seen[i].target);
        EXPECT_EQ(targets, one.targets);
        before = seen.size();
        if (one.end != "200 text" || one.mode != VLRetryMode::withNewToken) continue;
        EXPECT_EQ(seen.back().headers.at("authorization"), "bearer fresh");
        EXPECT_EQ(VLDefaults::getAuthorization(), "fresh");
    }
    EXPECT_THAT(log.lines(), ElementsAre("failed getting token from server..."));
}

TEST_F(ClientTest, ACancelledRequestCallsNeitherCallback) {
    const auto ends = std::make_shared<Ends>();
    const auto task = VLClient::sendRequestOfMethod(
        {.url = server_.url("/v2/hangs"), .success = success(ends), .failure = failure(ends)});
    task->cancel();
    // What is asked for later completes later, on the same queue.
    EXPECT_EQ(get("/v2/y"), "200 text");
    EXPECT_TRUE(ends->values().empty());
    EXPECT_EQ(task->state(), 3);
}

TEST_F(ClientTest, ThePlainApiBaseIsForTheLoopbackOnly) {
    ::setenv("VELMORA_API_BASE_URL", "http://ads.example/v2/", 1);
    EXPECT_EQ(VLWebServices::getTokenUrl(), "http://ads.example/v2/token/");
    const LogCapture log;
    EXPECT_EQ(send({.url = VLWebServices::getTokenUrl()}), "failed -1 broken off");
    EXPECT_TRUE(log.has("Refused to send a request over http"));
}

TEST_F(ClientTest, TheApiBaseMayBeAnAddressInBrackets) {
    std::optional<ScriptedServer> server;
    try {
        server.emplace([](const SeenRequest&) { return Script::answer(200, "six"); }, nullptr, "::1");
    } catch (const std::exception& error) {
        GTEST_SKIP() << "no IPv6 on this machine: " << error.what();
    }
    ::setenv("VELMORA_API_BASE_URL", server->url("/v2").c_str(), 1);
    ASSERT_EQ(send({.url = VLWebServices::getTokenUrl(), .params = Dictionary{{"a", "://[::1]"}}}),
              "200 six");
    EXPECT_EQ(server->seen().front().target, "/v2/token/?a=://%5B::1%5D");
    EXPECT_EQ(get("/v2/x?a=://[::1]"), "200 text");
    EXPECT_EQ(server_.seen().back().target, "/v2/x?a=://%5B::1%5D");
}

TEST(RequestHeaders, OptionalOnesAppearOnceTheirValuesAreStored) {
    const auto headers = [] {
        const auto list = VLRequestHeaders::getHeaders();
        return std::map<std::string, std::string>(list.begin(), list.end());
    };
    const auto bare = headers();
    EXPECT_THAT(bare, AllOf(Contains(Pair("sdk-type", "video-sdk")), Contains(Pair("dev-platform", "Xcode")),
                            Contains(Pair("device-os", "ios")), Contains(Pair("device-os-version", "22")),
                            Contains(Pair("secret-token", "480726")),
                            Contains(Pair("device-imei", EndsWith("0direct")))));
    for (const char* name : {"developer-key", "t-user-id", "authorization", "customer-user-id"}) {
        EXPECT_FALSE(bare.contains(name)) << name;
    }
    VLDefaults::setDeveloperKey("a1");
    VLDefaults::setVelmoraUserId("u");
    VLDefaults::setAppUserId("p");
    VLDefaults::setAuthorizationToken("t");
    EXPECT_THAT(headers(),
                AllOf(Contains(Pair("developer-key", "a1")), Contains(Pair("t-user-id", "u")),
                      Contains(Pair("authorization", "bearer t")), Contains(Pair("customer-user-id", "p")),
                      Contains(Pair("device-imei", EndsWith("147direct")))));
    EXPECT_THAT(
        (std::vector{VLRequestHeaders::randomIntForString("a1"), VLRequestHeaders::randomIntForString(""),
                     VLRequestHeaders::randomIntForString(std::nullopt),
                     VLRequestHeaders::randomIntForString("0"),
                     VLRequestHeaders::randomIntForString("\xF0\x9F\x98\x80")}),
        ElementsAre("147", "0", "0", "48", std::to_string(0xD83D + 0xDE00)));
}

}  // namespace

}  // namespace velmora::test
