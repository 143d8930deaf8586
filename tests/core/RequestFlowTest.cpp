#include "core/VLLog.h"
#include "core/VelmoraManager.h"
#include "model/VLAdSuggestion.h"
#include "model/VLAdSuggestionFinalState.h"
#include "model/VLCachedVelmoraAds.h"
#include "model/VLDefaults.h"
#include "model/VLFinalStatesModel.h"
#include "platform/FileManager.h"
#include "platform/Json.h"
#include "platform/UrlSession.h"
#include "platform/UserDefaults.h"
#include "support/Application.h"
#include "support/Await.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/ScriptedServer.h"

#include <cstdlib>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::test {

namespace {

using namespace std::chrono_literals;

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Key;
using testing::Not;
using testing::Pair;

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

std::size_t storedAds() {
    const auto ads = VLDefaults::getCachedAds()->cachedVelmoraAds.get();
    return ads ? ads->size() : 0;
}

/// What an application hears.
struct Heard {
    std::string what;
    std::shared_ptr<VelmoraAd> ad;
    std::size_t adsStored = 0;
    std::thread::id thread;
};

class RequestFlow : public testing::Test {
protected:
    RequestFlow() {
        ::setenv("VELMORA_API_BASE_URL", server_.url("/v2").c_str(), 1);
        VLLogger::setShallLog(true);
        for (const char* key : {"finalstates", "cachedAds", "velmoraUserId"}) {
            platform::UserDefaults::standard().removeObjectForKey(key);
        }
    }

    Heard request(const std::shared_ptr<VLAdRequestOptions>& options = nullptr) {
        const auto heard = std::make_shared<Await<Heard>>();
        const auto add = [heard](const std::string& what, const std::shared_ptr<VelmoraAd>& ad) {
            heard->add({what, ad, storedAds(), std::this_thread::get_id()});
        };
        Velmora::requestAdForZone(
            "zone", options,
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
        if (request.target == "/v2/suggestions/") return answer_;
        if (request.target.starts_with("/media/lost")) return {};
        return Script::answer(200, "a video");
    }

    [[nodiscard]] std::vector<SeenRequest> asked() const {
        auto seen = server_.seen();
        std::erase_if(seen, [](const auto& one) { return one.target != "/v2/suggestions/"; });
        return seen;
    }

    LogCapture log_;
    Script answer_;
    std::vector<std::shared_ptr<VelmoraAd>> expired_;
    ScriptedServer server_{[this](const SeenRequest& request) { return respond(request); }};
};

TEST_F(RequestFlow, AStreamedAdIsStoredAndThenOfferedOnABackgroundThread) {
    answer_ = Script::answer(
        200, answer(suggestion("first", "http://x/v.mp4") + "," + suggestion("second", "http://x/w.mp4"),
                    R"("velmoraUserId": "u-1", )"));
    const auto before = platform::nowInMilliseconds();
    const auto heard = request();
    EXPECT_EQ(heard.what, "available first");
    EXPECT_EQ(heard.adsStored, 1U);
    EXPECT_NE(heard.thread, std::this_thread::get_id());
    EXPECT_EQ(heard.ad->getZoneId(), "zone");
    EXPECT_EQ(heard.ad->getVideoFilePath(), std::nullopt);
    EXPECT_EQ(heard.ad->getRequestOptions()->getCacheTypeNumber(), 2);
    EXPECT_GE(heard.ad->getCacheTime().value(), before);
    EXPECT_TRUE(heard.ad->isValid());
    EXPECT_TRUE(log_.has("Suitable ad found"));
    EXPECT_TRUE(log_.has("Streamed no need to download"));
    EXPECT_EQ(VLDefaults::getVelmoraUserId(), "u-1");
    // It is for a later version to offer it again.
    EXPECT_EQ(VelmoraManager::getValidCachedAdForZone("zone"), nullptr);
    EXPECT_EQ(VelmoraManager::getValidCachedAdForZone("zone", 2), nullptr);
}

TEST_F(RequestFlow, EachRequestCarriesTheStatesOfTheAnswerBeforeIt) {
    answer_ = Script::answer(
        200, answer(suggestion("a", "u") + "," + suggestion("b", "u"), R"("velmoraUserId": "7", )"));
    request(options(1));
    answer_ = Script::answer(200, answer(""));
    request();
    request();
    const auto seen = asked();
    ASSERT_EQ(seen.size(), 3U);
    const auto state = [](const std::string& id) {
        return R"({"extraInfo":{},"state":2,"suggestionId":")" + id + R"("})";
    };
    const auto body = [](int cacheType, const std::string& states) {
        return platform::parseJson(R"({"clientRequestedCacheType":)" + std::to_string(cacheType) +
                                   R"(,"zoneId":"zone","finalStatesRequest":{"states":[)" + states + "]}}");
    };
    EXPECT_EQ(platform::parseJson(seen[0].body), body(1, ""));
    EXPECT_EQ(platform::parseJson(seen[1].body), body(2, state("a") + "," + state("b")));
    EXPECT_EQ(platform::parseJson(seen[2].body), body(2, ""));
    EXPECT_THAT(seen[0].headers, AllOf(Contains(Key("sdk-version")), Not(Contains(Key("t-user-id")))));
    EXPECT_THAT(seen[1].headers, Contains(Pair("t-user-id", "7")));
}

TEST_F(RequestFlow, ACachedAdIsOfferedWithItsVideoAndThenStored) {
    answer_ = Script::answer(200, answer(suggestion("a", server_.url("/media/clip.mp4?x=1"))));
    const auto wanted = options(1);
    const auto heard = request(wanted);
    EXPECT_EQ(heard.what, "available a");
    EXPECT_EQ(heard.adsStored, 0U);
    EXPECT_EQ(storedAds(), 1U);
    EXPECT_EQ(heard.ad->getVideoFilePath(),
              (platform::FileManager::documentsDirectory() / "clip.mp4?x=1").string());
    EXPECT_TRUE(heard.ad->isValid());
    std::filesystem::remove(heard.ad->getVideoFilePath().value());
    EXPECT_FALSE(heard.ad->isValid());
}

TEST_F(RequestFlow, AFailedDownloadIsOfferedForStreaming) {
    for (const auto& url : {server_.url("/media/lost.mp4"), server_.url("/media/..")}) {
        answer_ = Script::answer(200, answer(suggestion("a", url)));
        const auto wanted = options(1);
        const auto heard = request(wanted);
        EXPECT_EQ(heard.what, "available a");
        EXPECT_EQ(heard.ad->getVideoFilePath(), std::nullopt);
        EXPECT_EQ(wanted->getCacheTypeNumber(), 2);
        EXPECT_EQ(heard.ad->getRequestOptions(), wanted);
        EXPECT_TRUE(log_.has("Download Failed"));
        log_.clear();
    }
    EXPECT_EQ(storedAds(), 2U);
}

TEST_F(RequestFlow, WhateverTheServiceAnswersEndsInOneCallback) {
    std::string many;
    for (int i = 0; i < 100'000; ++i) many += suggestion(std::to_string(i), "u") + ",";
    const std::string deep = std::string(50'000, '[') + std::string(50'000, ']');
    const struct {
        Script answer;
        std::string heard;
    } cases[] = {
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
        {Script::answer(500, "broken"), "error Error fetching data from server, code:500 ,error:(null)"},
        {Script::answer(204, ""), "error Error fetching data from server, code:204 ,error:(null)"},
        {Script(), "error Error fetching data from server, code:-1 ,error:VelmoraTransportErrorDomain"},
    };
    VLDefaults::setVelmoraUserId("u-1");
    for (const auto& one : cases) {
        answer_ = one.answer;
        log_.clear();
        EXPECT_EQ(request().what, one.heard) << one.answer.bytes.substr(0, 300);
        EXPECT_EQ(log_.has("Suitable ad not found :("), one.heard == "none");
    }
    EXPECT_EQ(VLDefaults::getVelmoraUserId(), "u-1");
}

TEST_F(RequestFlow, AnUnknownCacheTypeEndsInAnErrorOnceAnAdIsFound) {
    answer_ = Script::answer(200, answer(suggestion("a", "u")));
    EXPECT_EQ(request(options(3)).what, "error Unsupported cache type.");
    EXPECT_EQ(request(options(std::nullopt)).what, "error Unsupported cache type.");
    answer_ = Script::answer(200, answer(""));
    EXPECT_EQ(request(options(3)).what, "none");
    EXPECT_EQ(storedAds(), 0U);
}

TEST_F(RequestFlow, TheOrderIsTheServicesUnlessItAsksForChance) {
    const auto three = suggestion("a", "u") + "," + suggestion("b", "u") + "," + suggestion("c", "u");
    for (const bool byChance : {false, true}) {
        answer_ = Script::answer(200, answer(three, byChance ? R"("selectDirectAdRandomly": true, )"
                                                             : R"("selectDirectAdRandomly": false, )"));
        std::set<std::string> seen;
        // All three come within 100 rounds but for one run in 10^17.
        for (int round = 0; round < 100 && seen.size() < 3; ++round) seen.insert(request().what);
        EXPECT_EQ(seen.size(), byChance ? 3U : 1U);
    }
}

TEST_F(RequestFlow, TheExpiryNoticeComesOnTheMainThreadWhenTheTimeIsUp) {
    UseManualClock clock;
    Application application;
    answer_ = Script::answer(
        200, answer(suggestion("a", server_.url("/media/v"), R"("expirationTimeInMillis": 5000, )")));
    const auto ad = request(options(1)).ad;
    answer_ = Script::answer(200, answer(suggestion("b", "u", R"("expirationTimeInMillis": "4000", )")));
    const auto early = request().ad;
    answer_ = Script::answer(200, answer(suggestion("c", "u")));
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

TEST_F(RequestFlow, ACallbackMayAskAgainAndThrow) {
    answer_ = Script::answer(200, answer(suggestion("a", "u")));
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
    EXPECT_EQ(storedAds(), 6U);
    EXPECT_TRUE(log_.has("An exception left onAdAvailable: the application's own fault"));
}

}  // namespace

}  // namespace velmora::test
