#include "platform/Geocoder.h"

#include "platform/UrlSession.h"
#include "platform/UrlText.h"
#include "sandbox/ScriptedServer.h"
#include "support/Application.h"
#include "support/Environment.h"
#include "support/LogCapture.h"

#include <chrono>
#include <map>
#include <thread>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using sandbox::Script;
using sandbox::ScriptedServer;
using sandbox::SeenRequest;

using platform::Geocoder;
using platform::Location;
using platform::Placemark;
using testing::HasSubstr;
using testing::Optional;

constexpr Location kLocation{
    .latitude = -47.25, .longitude = 0.001, .altitude = 3, .horizontalAccuracy = 5, .verticalAccuracy = 7};

/// What one question came to.
struct Outcome {
    std::vector<Placemark> placemarks;
    std::optional<std::string> error;
};

class GeocoderAnswer : public testing::Test {
protected:
    Outcome ask() {
        std::optional<Outcome> outcome;
        const auto main = std::this_thread::get_id();
        Geocoder::reverseGeocodeLocation(kLocation, [&](const auto& placemarks, const auto& error) {
            EXPECT_EQ(std::this_thread::get_id(), main);
            outcome = Outcome{placemarks, error};
        });
        EXPECT_TRUE(application_.runUntil([&] { return outcome.has_value(); }));
        return outcome.value_or(Outcome());
    }

    Outcome askWith(const Script& script) {
        const ScriptedServer server([&](const SeenRequest&) { return script; });
        const Environment base("VELMORA_GEOCODER_URL", server.url("/geo/").c_str());
        return ask();
    }

    Outcome askFor(const std::string& place) { return askWith(Script::answer(200, place)); }

    Application application_;
};

TEST_F(GeocoderAnswer, WhatIsMissingEmptyOrOfAnotherKindIsAbsent) {
    const auto outcome = askFor(
        R"({"name": "", "display_name": 5, "address": {"road": "Quay", "village": "Hill", "city": "", "state": null,
            "country": ["Isle"], "extra": {}}})");
    ASSERT_EQ(outcome.placemarks.size(), 1U);
    const auto& place = outcome.placemarks.front();
    EXPECT_EQ(place.name, "Quay");
    EXPECT_EQ(place.locality, "Hill");
    for (const auto& text : {place.country, place.isoCountryCode, place.ocean, place.postalCode,
                             place.administrativeArea, place.subAdministrativeArea, place.inlandWater})
        EXPECT_EQ(text, std::nullopt);
    EXPECT_FALSE(place.formattedAddressLines);
}

TEST_F(GeocoderAnswer, WhereAPartIsMissingTheNextBestStandsInForIt) {
    const char* const answers[]{
        R"({"road": "n", "town": "l", "sea": "o", "province": "a", "state_district": "s", "lake": "w"})",
        R"({"neighbourhood": "n", "hamlet": "l", "sea": "o", "region": "a", "district": "s", "river": "w"})",
        R"({"road": "n", "municipality": "l", "ocean": "o", "state": "a", "county": "s", "reservoir": "w"})",
    };
    for (const auto* parts : answers) {
        const auto outcome = askFor(std::string(R"({"address": )") + parts + "}");
        ASSERT_EQ(outcome.placemarks.size(), 1U) << parts;
        const auto& place = outcome.placemarks.front();
        EXPECT_EQ(place.name, "n") << parts;
        EXPECT_EQ(place.locality, "l") << parts;
        EXPECT_EQ(place.ocean, "o") << parts;
        EXPECT_EQ(place.administrativeArea, "a") << parts;
        EXPECT_EQ(place.subAdministrativeArea, "s") << parts;
        EXPECT_EQ(place.inlandWater, "w") << parts;
    }
}

TEST_F(GeocoderAnswer, WhatIsNoPlaceIsAnError) {
    const std::string place = R"({"address": {}, "name": ")";
    const Script cases[]{
        Script::answer(200, R"({"error": "Unable to geocode"})"),
        Script::answer(200, "[]"),
        Script::answer(200, "{\"address\": "),
        Script::answer(200, R"({"address": "somewhere"})"),
        Script::answer(200, ""),
        Script::answer(200, place + std::string(300'000, 'x') + "\"}"),
        Script::answer(200, std::string(100'000, '[')),
        Script::answer(429, R"({"address": {}})"),
        Script{.bytes = "no answer at all"},
        Script{.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{"},
    };
    for (const auto& script : cases) {
        const auto outcome = askWith(script);
        EXPECT_TRUE(outcome.error) << script.bytes.substr(0, 200);
        EXPECT_TRUE(outcome.placemarks.empty()) << script.bytes.substr(0, 200);
    }
}

TEST_F(GeocoderAnswer, AServiceThatNeverAnswersIsAnErrorInTheEnd) {
    platform::UrlSession::setIdleTimeout(std::chrono::milliseconds(300));
    EXPECT_TRUE(askWith(Script{.hang = true}).error);
}

TEST_F(GeocoderAnswer, TheQuestionHasThePositionAndTheUsersLanguages) {
    const ScriptedServer server([](const SeenRequest&) { return Script::answer(200, "{}"); });
    const Environment base("VELMORA_GEOCODER_URL", server.url("/geo//").c_str());
    const Environment language("LANGUAGE", "fa_IR:en");
    const Environment all("LC_ALL", "C");
    ask();
    ASSERT_EQ(server.seen().size(), 1U);
    const auto request = server.seen().front();
    EXPECT_EQ(request.target.substr(0, request.target.find('?') + 1), "/geo/reverse?");
    std::map<std::string, std::string> parameters;
    const auto items = platform::queryItems(request.target).value();
    for (const auto& [name, value] : items) parameters[name] = value.value();
    EXPECT_EQ(parameters, (std::map<std::string, std::string>{{"format", "jsonv2"},
                                                              {"lat", "-47.25"},
                                                              {"lon", "0.001"},
                                                              {"zoom", "18"},
                                                              {"addressdetails", "1"},
                                                              {"accept-language", "fa-IR,fa,en"}}));
    EXPECT_FALSE(request.headers.at("user-agent").empty());
}

TEST_F(GeocoderAnswer, NobodyIsAskedWhereNoneIsSetOrThePositionCouldBeReadOnTheWay) {
    {
        const Environment none("VELMORA_GEOCODER_URL", nullptr);
        EXPECT_THAT(ask().error, Optional(HasSubstr("no geocoder")));
    }
    const LogCapture log;
    const Environment plain("VELMORA_GEOCODER_URL", "http://geocoder.example");
    EXPECT_THAT(ask().error, Optional(HasSubstr("-1022")));
    EXPECT_TRUE(log.has("Refused to send a request over http"));
}

}  // namespace

}  // namespace velmora::test
