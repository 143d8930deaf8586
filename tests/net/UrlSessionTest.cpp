#include "platform/UrlSession.h"

#include "harness/Await.h"
#include "harness/Files.h"
#include "harness/TemporaryDirectory.h"
#include "net/VLRequestHeaders.h"
#include "platform/Reachability.h"
#include "sandbox/ScriptedServer.h"
#include "support/Certificates.h"
#include "support/LogCapture.h"

#include <atomic>
#include <cstdlib>
#include <random>
#include <stdexcept>

#include <gmock/gmock.h>

#include <sched.h>

namespace velmora::test {

namespace {

using sandbox::Script;
using sandbox::ScriptedServer;
using sandbox::SeenRequest;

using platform::UrlError;
using platform::UrlOutcome;
using platform::UrlRequest;
using platform::UrlSession;
using platform::UrlTask;

UrlRequest get(const std::string& url) {
    UrlRequest request;
    request.url = url;
    return request;
}

UrlOutcome fetch(const UrlRequest& request) {
    const auto await = std::make_shared<Await<UrlOutcome>>();
    UrlSession::shared()
        .dataTask(request, [await](UrlOutcome outcome) { await->add(std::move(outcome)); })
        ->resume();
    EXPECT_TRUE(await->count(1)) << request.url;
    const auto outcomes = await->values();
    return outcomes.empty() ? UrlOutcome() : outcomes.front();
}

std::string raw(const std::string& headers, const std::string& body) {
    return "HTTP/1.1 200 OK\r\n" + headers + "\r\n" + body;
}

/// What a server can do to a client, by the path that is asked for.
Script fault(const std::string& target) {
    if (target == "/nothing") return {};
    if (target == "/half-a-status") return {.bytes = "HTTP/1.1 200"};
    if (target == "/status-only") return {.bytes = "HTTP/1.1 200 OK\r\n"};
    if (target == "/half-a-header") return {.bytes = "HTTP/1.1 200 OK\r\nContent-Le"};
    if (target == "/no-blank-line") return {.bytes = "HTTP/1.1 200 OK\r\nServer: s\r\n"};
    if (target == "/interim-only") return {.bytes = "HTTP/1.1 103 Early Hints\r\nLink: l\r\n\r\n"};
    if (target == "/headers-only") return {.bytes = raw("", "")};
    if (target == "/drips")
        return {.bytes = raw("", ""), .block = ".", .blocks = 25, .pause = std::chrono::milliseconds(100)};
    if (target == "/drips-headers")
        return {.bytes = "HTTP/1.1 200 OK\r\n",
                .block = "S: s\r\n",
                .blocks = 25,
                .pause = std::chrono::milliseconds(100)};
    if (target == "/short") return {.bytes = raw("Content-Length: 100\r\n", "not a hundred")};
    if (target == "/broken-gzip")
        return {.bytes = raw("Content-Encoding: gzip\r\nContent-Length: 9\r\n", "not gzip!")};
    if (target == "/loop") return Script::answer(302, "", "Location: /loop\r\n");
    if (target == "/to-a-file") return Script::answer(302, "", "Location: file:///etc/passwd\r\n");
    if (target == "/not-http") return {.bytes = "220 ready\r\n"};
    if (target == "/hangs") return {.bytes = raw("Content-Length: 10\r\n", "12345"), .hang = true};
    if (target == "/204") return {.bytes = "HTTP/1.1 204 No Content\r\n\r\n", .keepOpen = true};
    if (target == "/500") return Script::answer(500, "it broke");
    if (target == "/too-long") {
        constexpr std::size_t block = std::size_t{64} * 1024;
        return {.bytes = raw("", "x"),
                .block = std::string(block, 'x'),
                .blocks = UrlSession::kMostBytesInMemory / block};
    }
    if (target.starts_with("/200?") || target.starts_with("/302?"))
        return Script::answer(std::stoi(target.substr(1, 3)), "", "Location: " + target.substr(5) + "\r\n");
    if (target == "/moved-and-cut-short") return Script::answer(302, "", "Location: /no-blank-line\r\n");
    if (target == "/moved") return Script::answer(302, "", "Location: /\r\n");
    return Script::answer(200, "body of " + target);
}

class UrlSessionTest : public testing::Test {
protected:
    /// Short enough to wait for, long enough for a busy machine; what drips takes longer.
    void SetUp() override { UrlSession::setIdleTimeout(std::chrono::seconds(2)); }

    ScriptedServer server_{[](const SeenRequest& request) { return fault(request.target); }};
};

TEST_F(UrlSessionTest, AllAreCancelledButReportsAndWhatComesAfterwards) {
    const auto ends = std::make_shared<Await<int>>();
    const auto start = [&](const std::string& path, bool isReport) {
        auto request = get(server_.url(path));
        request.isReport = isReport;
        UrlSession::shared()
            .dataTask(
                request,
                [ends](const UrlOutcome& outcome) { ends->add(outcome.error ? outcome.error->code : 0); })
            ->resume();
    };
    // More than a host has places for.
    for (int number = 0; number < 12; ++number) start("/hangs", false);
    UrlSession::shared().cancelAll();
    ASSERT_TRUE(ends->count(12));
    for (int number = 0; number < 7; ++number) start("/hangs", false);
    start("/drips", true);
    while (server_.seen().size() < 8) std::this_thread::yield();
    start("/", true);
    UrlSession::shared().cancelAll();
    start("/", false);
    ASSERT_TRUE(ends->count(22));
    auto codes = ends->values();
    EXPECT_THAT(std::vector(codes.begin(), codes.begin() + 19), testing::Each(int{UrlError::cancelled}));
    EXPECT_THAT(std::vector(codes.begin() + 19, codes.end()), testing::Each(0));
}

TEST_F(UrlSessionTest, EveryWayAServerCanFailEndsInOneErrorOrOneAnswer) {
    struct Case {
        std::string url;
        std::optional<int> error;
        int status;
    };
    const std::vector<Case> cases{
        {server_.url("/nothing"), UrlError::networkConnectionLost, -1},
        {server_.url("/half-a-status"), UrlError::networkConnectionLost, -1},
        {server_.url("/status-only"), UrlError::networkConnectionLost, 200},
        {server_.url("/half-a-header"), UrlError::networkConnectionLost, 200},
        {server_.url("/no-blank-line"), UrlError::networkConnectionLost, 200},
        {server_.url("/moved-and-cut-short"), UrlError::networkConnectionLost, 200},
        {server_.url("/interim-only"), UrlError::networkConnectionLost, 103},
        {server_.url("/headers-only"), std::nullopt, 200},
        {server_.url("/drips"), std::nullopt, 200},
        {server_.url("/drips-headers"), UrlError::networkConnectionLost, 200},
        {server_.url("/short"), UrlError::networkConnectionLost, 200},
        {server_.url("/broken-gzip"), UrlError::cannotDecodeContentData, 200},
        {server_.url("/loop"), UrlError::tooManyRedirects, 302},
        {server_.url("/to-a-file"), UrlError::unsupportedUrl, 302},
        {server_.url("/hangs"), UrlError::timedOut, 200},
        {server_.url("/too-long"), UrlError::dataLengthExceedsMaximum, 200},
        {server_.url("/204"), std::nullopt, 204},
        {server_.url("/500"), std::nullopt, 500},
        {server_.url("/moved"), std::nullopt, 200},
        {"http://127.0.0.1:1/", UrlError::cannotConnectToHost, -1},
        {"http://a b/", UrlError::badUrl, -1},
        {"", UrlError::badUrl, -1},
        {"file:///etc/passwd", UrlError::unsupportedUrl, -1},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.url);
        const auto outcome = fetch(get(one.url));
        EXPECT_EQ(outcome.error ? std::optional(outcome.error->code) : std::nullopt, one.error);
        EXPECT_EQ(outcome.response ? outcome.response->statusCode : -1, one.status);
        EXPECT_EQ(outcome.data.has_value(), !one.error);
        EXPECT_TRUE(!outcome.error || outcome.error->domain == UrlSession::kErrorDomain);
    }
}

TEST_F(UrlSessionTest, ACancelledTaskCompletesOnceAsCancelledWheneverItComes) {
    const auto ends = std::make_shared<Await<UrlOutcome>>();
    const auto task = [&](const char* path) {
        return UrlSession::shared().dataTask(get(server_.url(path)),
                                             [ends](UrlOutcome outcome) { ends->add(std::move(outcome)); });
    };
    const auto notStarted = task("/a");
    EXPECT_EQ(notStarted->state(), UrlTask::State::suspended);
    notStarted->cancel();
    const auto inFlight = task("/hangs");
    inFlight->resume();
    inFlight->cancel();
    inFlight->cancel();
    ASSERT_TRUE(ends->count(2));
    for (const auto& outcome : ends->values()) {
        ASSERT_TRUE(outcome.error);
        EXPECT_EQ(outcome.error->code, UrlError::cancelled);
    }
    const auto ended = task("/b");
    ended->resume();
    ended->resume();
    ASSERT_TRUE(ends->count(3));
    ended->cancel();
    EXPECT_EQ(ended->state(), UrlTask::State::completed);
    EXPECT_EQ(ends->values().back().data, "body of /b");
    EXPECT_EQ(ends->values().size(), 3U);
}

TEST_F(UrlSessionTest, AThousandRequestsShareAtMostEightConnections) {
    const auto ends = std::make_shared<Await<bool>>();
    for (int i = 0; i < 1000; ++i) {
        UrlSession::shared()
            .dataTask(get(server_.url("/x")), [ends](const UrlOutcome&) { ends->add(true); })
            ->resume();
    }
    EXPECT_TRUE(ends->count(1000));
    EXPECT_LE(server_.connections(), 8);
}

TEST_F(UrlSessionTest, TenThousandRequestsAgainstRandomFaultsEndOnceEachOnASerialQueue) {
    constexpr std::size_t count = 10'000;
    static constexpr const char* paths[] = {"/nothing",   "/half-a-header", "/short", "/broken-gzip",
                                            "/to-a-file", "/not-http",      "/204",   "/500",
                                            "/moved",     "/good",          "/good",  "/good"};
    std::mt19937 random(7);
    const auto ends = std::make_shared<Await<std::size_t>>();
    const auto running = std::make_shared<std::atomic<int>>(0);
    const LogCapture quiet;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string path = paths[random() % std::size(paths)];
        UrlSession::shared()
            .dataTask(get(server_.url(path)),
                      [ends, running, path, i](const UrlOutcome& outcome) {
                          EXPECT_EQ((*running)++, 0);
                          EXPECT_TRUE(path != "/good" || outcome.data == "body of /good");
                          ends->add(i);
                          --*running;
                          if (i % 100 == 0) throw std::runtime_error("an application's callback failed");
                      })
            ->resume();
    }
    ASSERT_TRUE(ends->count(count, std::chrono::seconds(100)));
    auto ended = ends->values();
    std::sort(ended.begin(), ended.end());
    EXPECT_EQ(std::unique(ended.begin(), ended.end()), ended.end());
    EXPECT_EQ(ended.size(), count);
}

TEST_F(UrlSessionTest, ARedirectedPostBecomesAGetWithoutABody) {
    auto request = get(server_.url("/moved"));
    request.method = "POST";
    request.body = "a body";
    request.setHeader("Content-Length", "6");
    EXPECT_EQ(fetch(request).data, "body of /");
    const auto seen = server_.seen();
    ASSERT_EQ(seen.size(), 2U);
    EXPECT_EQ(seen[0].method + " " + seen[0].headers.at("content-length") + " " + seen[0].body,
              "POST 6 a body");
    EXPECT_EQ(seen[1].method, "GET");
    EXPECT_FALSE(seen[1].headers.contains("content-length"));
}

TEST_F(UrlSessionTest, CookiesComeBackAndCompressedBodiesAreRead) {
    const ScriptedServer server([](const SeenRequest& request) {
        // "squeezed" in gzip's form, with a time of 0.
        static constexpr unsigned char kSqueezed[] = {
            0x1f, 0x8b, 0x08, 0x00, 0x00, 0x00, 0x00, 0x00, 0x02, 0xff, 0x2b, 0x2e, 0x2c, 0x4d,
            0x4d, 0xad, 0x4a, 0x4d, 0x01, 0x00, 0xde, 0x26, 0x14, 0x00, 0x08, 0x00, 0x00, 0x00};
        if (request.target == "/gzip") {
            return Script::answer(200, {reinterpret_cast<const char*>(kSqueezed), sizeof kSqueezed},
                                  "Content-Encoding: gzip\r\n");
        }
        return Script::answer(200, "", "Set-Cookie: crumb=1; Path=/\r\n");
    });
    fetch(get(server.url("/")));
    EXPECT_EQ(fetch(get(server.url("/gzip"))).data, "squeezed");
    EXPECT_EQ(server.seen().back().headers.at("cookie"), "crumb=1");
}

TEST(Reachability, ItFollowsTheRoutesOfTheMachine) {
    EXPECT_EQ(platform::Reachability::flags("127.0.0.1"), platform::Reachability::kReachable);
    EXPECT_EQ(platform::Reachability::flags("not an address"), std::nullopt);
    const bool isOutside = platform::Reachability::flags("9.9.9.9") == platform::Reachability::kReachable;
    EXPECT_EQ(VLRequestHeaders::connectionType(), isOutside ? "wifi" : "none");
}

TEST(Reachability, WithoutARouteThereIsNoConnection) {
    // In a network of its own, which has no routes; where the system allows one.
    const auto check = [] {
        const bool isAlone = ::unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0;
        std::_Exit(!isAlone || VLRequestHeaders::connectionType() == "none" ? 0 : 1);
    };
    EXPECT_EXIT(check(), testing::ExitedWithCode(0), "");
}

TEST_F(UrlSessionTest, ADownloadIsPublishedWholeOrNotAtAll) {
    const TemporaryDirectory folder;
    const auto download = [&](const char* path, const std::filesystem::path& file) {
        const auto await = std::make_shared<Await<UrlOutcome>>();
        UrlSession::shared()
            .downloadTask(get(server_.url(path)), file,
                          [await](UrlOutcome outcome) { await->add(std::move(outcome)); })
            ->resume();
        EXPECT_TRUE(await->count(1));
        return await->values().front();
    };
    EXPECT_FALSE(download("/video", folder / "a").error);
    EXPECT_EQ(contentOf(folder / "a"), "body of /video");
    EXPECT_FALSE(download("/500", folder / "b").error);
    EXPECT_EQ(contentOf(folder / "b"), "it broke");
    EXPECT_FALSE(download("/too-long", folder / "c").error);
    EXPECT_EQ(std::filesystem::file_size(folder / "c"), UrlSession::kMostBytesInMemory + 1);
    EXPECT_TRUE(download("/short", folder / "d").error);
    EXPECT_FALSE(download("/long-name", folder / std::string(255, 'n')).error);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 4);

    const LogCapture log;
    EXPECT_FALSE(download("/video", folder / "no-such-folder" / "e").error);
    EXPECT_TRUE(log.has("A file cannot be"));
}

TEST_F(UrlSessionTest, PlainHttpBeyondTheLoopbackIsRefusedWhereSecurityIsRequired) {
    // Leads to this machine, and is no loopback address. One connection there is kept.
    auto elsewhere = server_.url("/elsewhere");
    elsewhere.replace(elsewhere.find("127.0.0.1"), 9, "0.0.0.0");
    EXPECT_EQ(fetch(get(elsewhere)).data, "body of /elsewhere");
    UrlRequest request;
    request.requiresSecureTransport = true;
    for (const auto& [url, host] :
         {std::pair(std::string("http://ads.invalid/"), "ads.invalid"),
          std::pair(std::string("http://127.ads.invalid/"), "127.ads.invalid"),
          std::pair(std::string("http://localhost.ads.invalid/"), "localhost.ads.invalid"),
          std::pair(std::string("http://[2001:db8::1]/"), "[2001:db8::1]"),
          std::pair(server_.url("/302?" + elsewhere), "0.0.0.0"),
          std::pair(server_.url("/302?" + elsewhere.substr(elsewhere.find("//"))), "0.0.0.0")}) {
        const LogCapture log;
        request.url = url;
        const auto outcome = fetch(request);
        ASSERT_TRUE(outcome.error) << url;
        EXPECT_EQ(outcome.error->code, UrlError::insecureTransportRefused) << url;
        EXPECT_THAT(log.lines(),
                    testing::ElementsAre(testing::HasSubstr("Refused to send a request over http: http://" +
                                                            std::string(host) + " is not a loopback")));
    }
    EXPECT_THAT(server_.seen(),
                testing::Contains(testing::Field(&SeenRequest::target, "/elsewhere")).Times(1));
    for (const auto& [path, body] : {std::pair("/", "body of /"), std::pair("/moved", "body of /"),
                                     std::pair("/200?http://ads.invalid/", "")}) {
        request.url = server_.url(path);
        EXPECT_EQ(fetch(request).data, body) << path;
    }
}

TEST_F(UrlSessionTest, AHeaderWithoutAValueOrWithOneOfBlanksGoesOutEmpty) {
    auto request = get(server_.url("/"));
    request.headers = {{"Blank", " \t "}, {"Empty", ""}, {"Text", " x "}, {"Torn", "a\r\nb: c"}};
    const LogCapture log;
    fetch(request);
    const auto headers = server_.seen().back().headers;
    EXPECT_THAT(headers, testing::IsSupersetOf({std::pair("blank", ""), std::pair("empty", "")}));
    EXPECT_THAT(headers.at("text"), testing::StartsWith("x"));
    EXPECT_FALSE(headers.contains("torn") || headers.contains("b"));
    EXPECT_TRUE(log.has("Torn"));
}

TEST(UrlSession, AnAnswerThatBeginsWithAFoldedHeaderIsABadOneAndHarmsNoOther) {
    std::atomic<int> count = 0;
    const ScriptedServer server([&](const SeenRequest&) {
        return Script{.bytes = raw(count++ % 2 == 0 ? "Content-Length: 4\r\nX: y\r\n"
                                                    : " folded: line\r\nContent-Length: 4\r\n",
                                   "good"),
                      .keepOpen = true};
    });
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(fetch(get(server.url("/"))).data, "good") << i;
        const auto bad = fetch(get(server.url("/")));
        ASSERT_TRUE(bad.error);
        ASSERT_EQ(bad.error->code, UrlError::badServerResponse) << bad.error->description;
    }
}

TEST(UrlSession, KeptConnectionsThatDieAreReplacedHoweverManyThereWere) {
    std::atomic<int> count = 0;
    // The second request of each connection is not answered.
    const ScriptedServer server(
        [&](const SeenRequest&) { return count++ % 2 == 0 ? Script::answer(200, "good") : Script(); });
    for (int i = 0; i < 20; ++i) {
        const auto outcome = fetch(get(server.url("/")));
        ASSERT_EQ(outcome.data, "good") << i << ": " << outcome.error->description;
    }
    EXPECT_EQ(server.connections(), 20);
}

TEST_F(UrlSessionTest, AHostThatHangsHoldsUpNoOtherAndACallbackNoTransfer) {
    const auto ends = std::make_shared<Await<std::string>>();
    const ScriptedServer other([&](const SeenRequest& request) {
        ends->add("sent " + request.target);
        return Script::answer(200, "");
    });
    const auto ask = [&](const std::string& url, const std::function<void()>& completion) {
        UrlSession::shared().dataTask(get(url), [completion](const UrlOutcome&) { completion(); })->resume();
    };
    for (std::size_t i = 0; i < 2 * UrlSession::kMostInFlightPerHost; ++i)
        ask(server_.url("/hangs"), [ends] { ends->add("timed out"); });
    ask(other.url("/1"), [ends, &ask, &other] {
        for (const auto* path : {"/2", "/3", "/4"}) ask(other.url(path), [ends] { ends->add("completed"); });
        EXPECT_TRUE(ends->count(4)) << "while this completion runs";
        ends->add("slow one");
    });
    ASSERT_TRUE(ends->count(8));
    auto order = ends->values();
    order.resize(8);
    std::sort(order.begin() + 1, order.begin() + 4);
    EXPECT_THAT(order, testing::ElementsAre("sent /1", "sent /2", "sent /3", "sent /4", "slow one",
                                            "completed", "completed", "completed"));
}

TEST_F(UrlSessionTest, AProxyOfTheEnvironmentTakesAllButTheLoopback) {
    ::setenv("http_proxy", server_.url("").c_str(), 1);
    EXPECT_EQ(fetch(get("http://ads.invalid/x")).data, "body of http://ads.invalid/x");
    const ScriptedServer near([](const SeenRequest&) { return Script::answer(200, "near"); });
    EXPECT_EQ(fetch(get(near.url("/y"))).data, "near");
    ::unsetenv("http_proxy");
}

TEST(UrlSession, TlsIsVerifiedAgainstTheAuthorityThatIsTrusted) {
    const auto good = Certificates::makeFor("127.0.0.1");
    ::setenv("VELMORA_CA_FILE", good->authorityFile().c_str(), 1);
    const auto answer = [](const SeenRequest& request) {
        auto script = Script::answer(200, "secure");
        script.keepOpen = request.target != "/last";
        return script;
    };
    const ScriptedServer server(answer, good);
    EXPECT_EQ(fetch(get(server.url("/last"))).data, "secure");
    EXPECT_EQ(fetch(get(server.url("/"))).data, "secure");
    EXPECT_EQ(server.resumedSessions(), 1);

    // Each is trusted while it is tried, so that only the fault that is meant can refuse it; the last one is
    // not.
    const auto foreign = Certificates::makeFor("127.0.0.1");
    for (const auto& [certificates, authority] :
         {std::pair{Certificates::makeFor("other.example"), std::shared_ptr<Certificates>()},
          std::pair{Certificates::makeFor("127.0.0.1", -1), std::shared_ptr<Certificates>()},
          std::pair{foreign, good}}) {
        const auto& trusted = authority ? authority : certificates;
        ::setenv("VELMORA_CA_FILE", trusted->authorityFile().c_str(), 1);
        const ScriptedServer refused(answer, certificates);
        const auto outcome = fetch(get(refused.url("/")));
        ASSERT_TRUE(outcome.error);
        EXPECT_EQ(outcome.error->code, UrlError::serverCertificateUntrusted) << outcome.error->description;
        EXPECT_TRUE(refused.seen().empty());
    }
    ::unsetenv("VELMORA_CA_FILE");
}

}  // namespace

}  // namespace velmora::test
