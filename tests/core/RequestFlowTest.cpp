#include "core/VelmoraManager.h"
#include "harness/Await.h"
#include "log/VLLog.h"
#include "model/AtomicProperty.h"
#include "platform/FileManager.h"
#include "platform/Json.h"
#include "platform/Log.h"
#include "platform/UrlSession.h"
#include "sandbox/ScriptedServer.h"
#include "store/VLDefaults.h"
#include "support/Application.h"
#include "support/ApplicationStore.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/Program.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <thread>
#include <utility>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using sandbox::Script;
using sandbox::ScriptedServer;
using sandbox::SeenRequest;

using namespace std::chrono_literals;

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Key;
using testing::Not;
using testing::Pair;
using testing::UnorderedElementsAre;

/// The lines that the steps of an answer write.
const std::set<std::string, std::less<>> kSteps{"Suitable ad found", "Suitable ad not found :(",
                                                "downloading video file", "Download Failed",
                                                "Streamed no need to download"};

/// A suggestion of a video that can be shown; `more` is more of its entries.
std::string suggestion(const std::string& id, const std::string& ctaUrl, const std::string& more = "") {
    return R"({"suggestionId": ")" + id + R"(", )" + more +
           R"("creative": {"ctaType": 3, "action": {"type": 1}, "ctaUrl": ")" + ctaUrl + R"("}})";
}

std::string answer(const std::string& suggestions, const std::string& more = "") {
    return R"({)" + more + R"("suggestions": [)" + suggestions + "]}";
}

std::shared_ptr<VLAdRequestOptions> options(std::optional<std::int64_t> cacheType) {
    auto made = std::make_shared<VLAdRequestOptions>();
    if (cacheType) made->setCacheType(*cacheType);
    return made;
}

/// What is in the store.
struct Kept {
    /// How many ads are ready that were reported as filled before.
    std::ptrdiff_t ads = 0;
    std::string states;
    std::optional<std::string> user;
};

/// What an application hears, and what is kept at that moment.
struct Heard {
    std::string what;
    std::shared_ptr<VelmoraAd> ad;
    Kept kept;
    std::thread::id thread;
};

class RequestFlow : public testing::Test {
protected:
    RequestFlow() {
        ::setenv("VELMORA_API_BASE_URL", server_.url("/v2").c_str(), 1);
        VLLogger::setShallLog(true);
    }

    Kept kept() {
        const auto ads = store_.list("cachedAds", "cachedVelmoraAds");
        return {
            std::count_if(ads.begin(), ads.end(),
                          [](const auto& ad) { return platform::asBool(ad.at("mAd").at("filledReported")); }),
            store_.states(), store_.valueOf("velmoraUserId")};
    }

    Heard request(const std::shared_ptr<VLAdRequestOptions>& options = nullptr,
                  const std::optional<std::string>& zone = "zone") {
        const auto heard = std::make_shared<Await<Heard>>();
        const auto add = [this, heard](const std::string& what, const std::shared_ptr<VelmoraAd>& ad) {
            heard->add({what, ad, kept(), std::this_thread::get_id()});
        };
        Velmora::requestAdForZone(
            zone, options,
            [add](const auto& ad) { add("available " + ad->getId().value_or("without an id"), ad); },
            [add] { add("none", nullptr); },
            [add](const std::string& message) { add("error " + message, nullptr); },
            [this](const auto& ad) { expired_.push_back(ad); });
        EXPECT_TRUE(heard->count(1));
        settle();
        EXPECT_EQ(heard->values().size(), 1U);
        return heard->values().front();
    }

    /// Returns when everything that was to happen with the answers so far has happened.
    void settle() {
        const auto end = std::make_shared<Await<bool>>();
        platform::UrlRequest request;
        request.url = server_.url("/nothing");
        platform::UrlSession::shared().dataTask(request, [end](const auto&) { end->add(true); })->resume();
        EXPECT_TRUE(end->count(1));
    }

    Script respond(const SeenRequest& request) {
        if (request.target == "/v2/suggestions/") return answer_.get();
        if (onMedia_) onMedia_();
        if (request.target.starts_with("/media/lost")) return {};
        return Script::answer(200, "a video");
    }

    [[nodiscard]] std::vector<SeenRequest> asked() const {
        auto seen = server_.seen();
        std::erase_if(seen, [](const auto& one) { return one.target != "/v2/suggestions/"; });
        return seen;
    }

    ApplicationStore store_;
    LogCapture log_;
    /// The server's threads read it.
    AtomicProperty<Script> answer_;
    std::function<void()> onMedia_;
    std::vector<std::shared_ptr<VelmoraAd>> expired_;
    ScriptedServer server_{[this](const SeenRequest& request) { return respond(request); }};
};

TEST_F(RequestFlow, TheStepsOfAnAnswerComeInTheirOrder) {
    const std::string video = suggestion("a", server_.url("/media/clip.mp4?x=1"));
    const std::string both = video + "," + suggestion("b", "u");
    const std::string lost = suggestion("a", server_.url("/media/lost.mp4"));
    const std::string nowhere = suggestion("a", server_.url("/media/.."));
    const std::string unsupported = R"({"suggestionId": "a", "creative": {"ctaType": 4}})";
    const std::vector<std::string> refused{"Suitable ad found", "downloading video file", "Download Failed"};
    // The cache says it too.
    auto failed = refused;
    failed.emplace_back("Download Failed");
    const auto documents = platform::FileManager::documentsDirectory();

    const struct {
        std::string suggestions;
        std::optional<std::int64_t> cacheType;
        std::string heard;
        std::vector<std::string> said;
        int adsAtTheCallback;
        std::optional<std::string> path;
    } cases[] = {
        {both, 2, "available a", {"Suitable ad found", "Streamed no need to download"}, 1, std::nullopt},
        {both,
         1,
         "available a",
         {"Suitable ad found", "downloading video file"},
         0,
         documents / "clip.mp4?x=1"},
        {lost, 1, "available a", failed, 0, std::nullopt},
        {nowhere, 1, "available a", refused, 0, std::nullopt},
        {unsupported, 2, "none", {"Suitable ad not found :("}, 0, std::nullopt},
        {both, 3, "error Unsupported cache type.", {"Suitable ad found"}, 0, std::nullopt},
        {both, std::nullopt, "error Unsupported cache type.", {"Suitable ad found"}, 0, std::nullopt},
        {unsupported, 3, "none", {"Suitable ad not found :("}, 0, std::nullopt},
    };

    int round = 0;
    for (const auto& one : cases) {
        const auto user = "\"u-" + std::to_string(++round) + "\"";
        const auto* const states = one.suggestions == both ? "a=2 b=2" : "a=2";
        SCOPED_TRACE(one.heard + " " + user);
        ApplicationStore::emptied();
        answer_.set(Script::answer(200, answer(one.suggestions, R"("velmoraUserId": )" + user + ", ")));
        // The lines of the steps, each with what was kept when it was written.
        std::vector<std::string> said;
        const auto before = platform::setLogSink([&](std::string_view line) {
            if (!kSteps.contains(line)) return;
            said.emplace_back(line);
            EXPECT_EQ(kept().states, states) << line;
            EXPECT_EQ(kept().user, user) << line;
        });
        const auto wanted = options(one.cacheType);
        const auto heard = request(wanted);
        platform::setLogSink(before);

        EXPECT_EQ(said, one.said);
        EXPECT_EQ(heard.what, one.heard);
        EXPECT_NE(heard.thread, std::this_thread::get_id());
        EXPECT_EQ(heard.kept.states, states);
        EXPECT_EQ(heard.kept.user, user);
        EXPECT_EQ(heard.kept.ads, one.adsAtTheCallback);
        EXPECT_EQ(kept().ads, heard.ad ? 1 : 0);
        // It is for a later version to offer it again.
        EXPECT_EQ(VelmoraManager::getValidCachedAdForZone("zone"), nullptr);
        EXPECT_EQ(VelmoraManager::getValidCachedAdForZone("zone", 2), nullptr);
        if (!heard.ad) continue;
        EXPECT_EQ(heard.ad->getZoneId(), "zone");
        EXPECT_EQ(heard.ad->getVideoFilePath(), one.path);
        EXPECT_TRUE(heard.ad->isValid());
        EXPECT_EQ(heard.ad->getRequestOptions(), wanted);
        EXPECT_EQ(wanted->getCacheTypeNumber() == VLCacheType::cached, one.path.has_value());
    }
}

TEST_F(RequestFlow, AnAdIsReadyWhenItsDownloadIsDone) {
    UseManualClock clock;
    onMedia_ = [&] { clock->advance(5s); };
    const auto before = platform::nowInMilliseconds();
    answer_.set(Script::answer(200, answer(suggestion("a", server_.url("/media/v")))));
    EXPECT_EQ(request(options(1)).ad->getCacheTime(), before + 5000);
}

TEST_F(RequestFlow, AVideoThatCannotBeWrittenIsOfferedWithAPathToNoFile) {
    const auto documents = platform::FileManager::documentsDirectory();
    std::filesystem::remove_all(documents);
    // A file where the folder should be.
    ASSERT_TRUE(platform::FileManager::write(documents, ""));
    answer_.set(Script::answer(200, answer(suggestion("a", server_.url("/media/v")))));
    const auto heard = request(options(1));
    std::filesystem::remove(documents);

    EXPECT_TRUE(log_.has(documents.string()));
    EXPECT_EQ(heard.what, "available a");
    EXPECT_EQ(heard.ad->getVideoFilePath(), documents / "v");
    EXPECT_TRUE(heard.ad->isFileRemoved());
    EXPECT_FALSE(heard.ad->isValid());
}

TEST_F(RequestFlow, ARequestLetsItsCallbacksGoOnceItHasItsAnswer) {
    UseManualClock clock;
    Application application;
    const struct {
        Script answer;
        std::int64_t cacheType;
        bool expires;
    } cases[] = {
        {Script::answer(200, answer(suggestion("a", "u"))), 2, false},
        {Script::answer(200, answer(suggestion("a", "u", R"("expirationTimeInMillis": 5000, )"))), 2, true},
        {Script::answer(
             200, answer(suggestion("a", server_.url("/media/v"), R"("expirationTimeInMillis": 5000, )"))),
         1, true},
        {Script::answer(200, answer(suggestion("a", "u"))), 3, false},
        {Script::answer(200, answer("")), 2, false},
        {Script::answer(500, ""), 2, false},
    };
    for (const auto& one : cases) {
        answer_.set(one.answer);
        const auto gone = std::make_shared<Await<std::string>>();
        // Something of the application's that tells when it is destroyed.
        const auto held = [&gone](const std::string& name) {
            return std::shared_ptr<void>(nullptr, [gone, name](void*) { gone->add(name); });
        };
        Velmora::requestAdForZone(
            "zone", options(one.cacheType), [held = held("available")](const auto&) {},
            [held = held("none")] {}, [held = held("error")](const auto&) {},
            [held = held("expiring")](const auto&) {});
        EXPECT_TRUE(gone->count(one.expires ? 3 : 4));
        settle();
        EXPECT_EQ(gone->values().size(), one.expires ? 3U : 4U);
        if (!one.expires) continue;
        EXPECT_THAT(gone->values(), UnorderedElementsAre("available", "none", "error"));
        clock->advance(5s);
        EXPECT_TRUE(application.runUntil([&] { return gone->values().size() == 4; }));
    }
}

TEST_F(RequestFlow, EachRequestCarriesTheStatesOfTheAnswerBeforeIt) {
    answer_.set(Script::answer(
        200, answer(suggestion("a", "u") + "," + suggestion("b", "u"), R"("velmoraUserId": "7", )")));
    request(options(1));
    answer_.set(Script::answer(500, ""));
    request();
    answer_.set(Script::answer(200, answer("")));
    request(nullptr, "");
    EXPECT_TRUE(log_.has("Empty zoneId replaced with nil"));
    log_.clear();
    request(nullptr, std::nullopt);
    EXPECT_FALSE(log_.has("Empty zoneId replaced with nil"));
    const auto seen = asked();
    ASSERT_EQ(seen.size(), 4U);
    const auto state = [](const std::string& id) {
        return R"({"extraInfo":{},"state":2,"suggestionId":")" + id + R"("})";
    };
    const auto body = [](int cacheType, const std::string& zone, const std::string& states) {
        return platform::parseJson(R"({"clientRequestedCacheType":)" + std::to_string(cacheType) + zone +
                                   R"(,"finalStatesRequest":{"states":[)" + states + "]}}");
    };
    const auto zone = R"(,"zoneId":"zone")";
    EXPECT_EQ(platform::parseJson(seen[0].body), body(1, zone, ""));
    EXPECT_EQ(platform::parseJson(seen[1].body), body(2, zone, state("a") + "," + state("b")));
    // A failed answer leaves the states, and an empty zone is none.
    EXPECT_EQ(platform::parseJson(seen[2].body), body(2, "", state("a") + "," + state("b")));
    EXPECT_EQ(platform::parseJson(seen[3].body), body(2, "", ""));
    EXPECT_THAT(seen[0].headers, AllOf(Contains(Key("sdk-version")), Not(Contains(Key("t-user-id")))));
    EXPECT_THAT(seen[1].headers, Contains(Pair("t-user-id", "7")));
}

TEST_F(RequestFlow, WhateverTheServiceAnswersEndsInOneCallback) {
    std::string many;
    for (int i = 0; i < 10'000; ++i) many += suggestion(std::to_string(i), "u") + ",";
    const std::string broken = "error Error fetching data from server, code:";
    const auto* const off = " ,error:VelmoraTransportErrorDomain";
    const std::string deep = std::string(50'000, '[') + std::string(50'000, ']');
    const std::pair<Script, std::string> cases[] = {
        {Script::answer(200, answer("")), "none"},
        {Script::answer(200, "{}"), "none"},
        {Script::answer(200, ""), "none"},
        {Script::answer(200, "<html>busy</html>"), "none"},
        {Script::answer(200, "[1, 2]"), "none"},
        {Script::answer(200, R"({"suggestions": 7})"), "none"},
        {Script::answer(200, R"({"suggestions": [7, null, "x", [], {}]})"), "none"},
        {Script::answer(200, deep), "none"},
        {Script::answer(200, R"({"suggestions": )" + deep + "}"), "none"},
        {Script::answer(200, answer(R"({"suggestionId": "a", "creative": {"ctaType": 4}})")), "none"},
        {Script::answer(200, answer(R"({"suggestionId": "a", "creative": {"ctaType": 1, "ctaUrl": "u",
                                       "action": {"type": 2}}})")),
         "none"},
        {Script::answer(
             200, answer(R"({"suggestionId": 12, "title": {}, "creative": {"ctaType": 2, "ctaUrl": 5}},)" +
                             suggestion("b", "u"),
                         R"("velmoraUserId": 9, "selectDirectAdRandomly": "no", )")),
         "available without an id"},
        {Script::answer(200, answer(many + suggestion("last", "u"))), "available 0"},
        {Script::answer(500, "broken"), broken + "500 ,error:(null)"},
        {Script::answer(204, ""), broken + "204 ,error:(null)"},
        {Script(), broken + "-1" + off},
        {Script{.bytes = "HTTP/1.1 200 O"}, broken + "-1" + off},
        // A status that has come counts as the answer's.
        {Script{.bytes = "HTTP/1.1 200 OK\r\nContent-Type: application/js"}, broken + "200" + off},
        {Script{.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n"}, broken + "200" + off},
    };
    VLDefaults::setVelmoraUserId("u-1");
    for (const auto& [answer, heard] : cases) {
        answer_.set(answer);
        EXPECT_EQ(request().what, heard) << answer.bytes.substr(0, 300);
    }
    EXPECT_EQ(VLDefaults::getVelmoraUserId(), "u-1");
}

TEST_F(RequestFlow, TheOrderIsTheServicesUnlessItAsksForChance) {
    const auto three = suggestion("a", "u") + "," + suggestion("b", "u") + "," + suggestion("c", "u");
    for (const bool byChance : {false, true}) {
        answer_.set(Script::answer(200, answer(three, byChance ? R"("selectDirectAdRandomly": true, )"
                                                               : R"("selectDirectAdRandomly": false, )")));
        std::set<std::string> seen;
        // All three come within 100 rounds but for one run in 10^17.
        for (int round = 0; round < 100 && seen.size() < 3; ++round) seen.insert(request().what);
        EXPECT_EQ(seen.size(), byChance ? 3U : 1U);
    }
}

TEST_F(RequestFlow, TheExpiryNoticeComesOnTheMainThreadWhenTheTimeIsUp) {
    UseManualClock clock;
    Application application;
    answer_.set(Script::answer(
        200, answer(suggestion("a", server_.url("/media/v"), R"("expirationTimeInMillis": 5000, )"))));
    const auto ad = request(options(1)).ad;
    answer_.set(Script::answer(200, answer(suggestion("b", "u", R"("expirationTimeInMillis": "4000", )"))));
    const auto early = request().ad;
    answer_.set(Script::answer(200, answer(suggestion("c", "u"))));
    request();

    clock->advance(3999ms);
    QCoreApplication::processEvents();
    EXPECT_THAT(expired_, ElementsAre());
    clock->advance(1ms);
    EXPECT_TRUE(application.runUntil([&] { return expired_.size() == 1; }));
    clock->advance(1000ms);
    EXPECT_TRUE(application.runUntil([&] { return expired_.size() == 2; }));
    EXPECT_THAT(expired_, ElementsAre(early, ad));
    EXPECT_TRUE(early->isExpired());
    EXPECT_FALSE(ad->isExpired());
    clock->advance(24h);
    QCoreApplication::processEvents();
    EXPECT_EQ(expired_.size(), 2U);
}

TEST_F(RequestFlow, NoCallbackBeginsOnceTheProcessHasLeftMain) {
    const TemporaryDirectory data;
    answer_.set(Script::answer(200, answer(suggestion("a", "u"))));
    const auto ended = runProgram({VELMORA_REQUEST_LEAVER}, {{"XDG_DATA_HOME", data.path().string()}});
    EXPECT_EQ(ended.status, 0) << ended.errors;
    EXPECT_EQ(asked().size(), 8U);
}

TEST_F(RequestFlow, ACallbackMayAskAgainAndThrow) {
    answer_.set(Script::answer(200, answer(suggestion("a", "u"))));
    const auto ends = std::make_shared<Await<bool>>();
    const std::function<void(int)> ask = [&](int left) {
        Velmora::requestAdForZone(
            "zone",
            [&, left](const auto&) {
                if (left > 0) ask(left - 1);
                ends->add(true);
                throw std::runtime_error("the application's own fault");
            },
            [] {}, [](const auto&) {}, [](const auto&) {});
    };
    ask(5);
    EXPECT_TRUE(ends->count(6));
    settle();
    EXPECT_EQ(kept().ads, 6);
    EXPECT_TRUE(log_.has("An exception left onAdAvailable: the application's own fault"));
}

}  // namespace

}  // namespace velmora::test
