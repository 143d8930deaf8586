#include "device/GeoInfo.h"
#include "device/GeoInfoLocationIOS.h"
#include "platform/Geocoder.h"
#include "sandbox/ScriptedServer.h"
#include "support/Application.h"
#include "support/Environment.h"
#include "support/LogCapture.h"
#include "support/Records.h"

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using sandbox::Script;
using sandbox::ScriptedServer;
using sandbox::SeenRequest;

using platform::Location;
using testing::EndsWith;
using testing::HasSubstr;

constexpr const char* kWholePlace =
    R"({"name": "n", "display_name": "l1 , l2", "address": {"city": "c", "town": "t", "county": "sa",
    "state": "a", "postcode": "p", "country": "co", "country_code": "cc", "ocean": "o", "water": "w"}})";
constexpr const char* kPlaceOnLand =
    R"({"name": "n2", "display_name": "l3", "address": {"city": "c2", "county": "sa2",
    "state": "a2", "postcode": "p2", "country": "co2", "country_code": "c2", "water": "w2"}})";

/// A place whose fixes are given by hand, and are looked up in a real geocoder.
class Place : public testing::Test {
protected:
    void fix(const std::vector<Location>& locations) {
        place_->locationManagerDidUpdateLocations(manager_, locations);
    }

    /// Everything up to the end of the next answer of this text.
    void fixIn(const std::string& answer, const std::vector<Location>& locations) {
        const auto asked = server_.seen().size();
        answer_ = answer;
        fix(locations);
        // Completions come in their order: this one is behind the one of the fix.
        ASSERT_TRUE(application_.runUntil([&] { return server_.seen().size() > asked; }));
        bool isOver = false;
        platform::Geocoder::reverseGeocodeLocation({}, [&](const auto&, const auto&) { isOver = true; });
        ASSERT_TRUE(application_.runUntil([&] { return isOver; }));
    }

    [[nodiscard]] Value record() const {
        GeoInfo info;
        info.geoInfoLocation.set(place_);
        return written(info);
    }

    std::string answer_;
    const ScriptedServer server_{[this](const SeenRequest&) { return Script::answer(200, answer_); }};
    const Environment base_{"VELMORA_GEOCODER_URL", server_.url("").c_str()};
    Application application_;
    platform::LocationManager manager_;
    const std::shared_ptr<GeoInfoLocationIOS> place_ = std::make_shared<GeoInfoLocationIOS>();
};

constexpr Location kFix{
    .latitude = 1.5, .longitude = 2.5, .altitude = 3, .horizontalAccuracy = 4, .verticalAccuracy = -1};

TEST_F(Place, AllOfAWholePlaceIsTaken) {
    fixIn(kWholePlace, {kFix});
    EXPECT_EQ(record(), valueOf(R"({"geoInfoLocation": {"address": "l1, l2", "locality": "c", "country": "co",
        "isoCountryCode": "CC", "name": "n", "ocean": "o", "postalCode": "p", "administrativeArea": "a",
        "subAdministrativeArea": "sa", "inlandWater": "w", "latitude": 1.5, "longitude": 2.5, "altitude": 3.0,
        "horizontalAccuracy": 4.0, "verticalAccuracy": -1.0}})"));
}

TEST_F(Place, AnIncompletePlaceIsTakenUpToWhatIsMissing) {
    const LogCapture log;
    fixIn(kPlaceOnLand, {kFix});
    EXPECT_EQ(record(), valueOf(R"({"geoInfoLocation": {"address": "l3", "locality": "c2", "country": "co2",
        "isoCountryCode": "C2", "name": "n2"}})"));
    EXPECT_TRUE(log.has("the place has no ocean"));

    // What an earlier place told stays.
    fixIn(kWholePlace, {kFix});
    fixIn(kPlaceOnLand, {{.latitude = 50}});
    const auto mixed = record().at("geoInfoLocation");
    EXPECT_EQ(mixed.at("name"), "n2");
    EXPECT_EQ(mixed.at("ocean"), "o");
    EXPECT_EQ(mixed.at("latitude"), 1.5);

    // Without lines of an address, nothing at all is taken.
    fixIn(R"({"name": "n3", "address": {"city": "c3"}})", {kFix});
    EXPECT_EQ(record().at("geoInfoLocation"), mixed);
    EXPECT_THAT(log.lines().back(), EndsWith("the place has no address"));
}

TEST_F(Place, AnErrorLeavesEverythingAsItWas) {
    fixIn(R"({"error": "Unable to geocode"})", {kFix});
    EXPECT_EQ(record(), valueOf(R"({"geoInfoLocation": {}})"));
    fixIn(kWholePlace, {kFix});
    const auto before = record();
    fixIn("nothing", {{.latitude = 9}});
    EXPECT_EQ(record(), before);
}

TEST_F(Place, TheOldestOfSeveralFixesIsTheOneThatCounts) {
    fix({});
    fixIn(kWholePlace, {kFix, {.latitude = 70}, {.latitude = 80}});
    EXPECT_EQ(record().at("geoInfoLocation").at("latitude"), 1.5);
    EXPECT_THAT(server_.seen().front().target, HasSubstr("lat=1.5&"));
}

}  // namespace

}  // namespace velmora::test
