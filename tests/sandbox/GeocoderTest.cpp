#include "sandbox/Sandbox.h"
#include "support/Exchange.h"
#include "support/LastEntry.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using sandbox::Sandbox;
using testing::ElementsAre;
using testing::IsEmpty;

class SandboxGeocoder : public testing::Test {
protected:
    [[nodiscard]] Answer find(const std::string& query) const {
        return ask(
            {.url = service_.geocoderUrl() + "/reverse?" + query, .headers = {{"user-agent", "test/1"}}});
    }

    [[nodiscard]] std::vector<std::string> problems() const {
        EXPECT_EQ(lastEntry(service_).at("kind"), "geocoder");
        return lastProblems(service_);
    }

    const Sandbox service_;
};

TEST_F(SandboxGeocoder, ThereIsAPlaceWithinADegreeOfThoseThatItKnows) {
    const auto island = find("format=jsonv2&lat=47.9&lon=-44.6").json();
    EXPECT_EQ(island.at("address").at("ocean"), "Atlantic Ocean");
    EXPECT_EQ(island.at("lat"), "47.500000");
    const auto town = find("format=jsonv2&lat=52.5&lon=13.4&accept-language=fa").json();
    EXPECT_EQ(town.at("address").at("town"), "Shovel");
    EXPECT_FALSE(town.at("address").as_object().contains("ocean"));
    EXPECT_THAT(problems(), IsEmpty());
    for (const char* elsewhere : {"lat=50&lon=13.4", "lat=52.5&lon=-13.4", "lat=-90&lon=180"}) {
        const auto answer = find(std::string("format=jsonv2&") + elsewhere);
        EXPECT_EQ(answer.status, 200);
        EXPECT_EQ(answer.body, R"({"error":"Unable to geocode"})");
    }
}

TEST_F(SandboxGeocoder, WhatIsNoPositionIsAnError) {
    for (const char* query : {"", "lat=1", "lon=1", "lat=1&lon=", "lat=91&lon=0", "lat=0&lon=-181",
                              "lat=nan&lon=0", "lat=1x&lon=0"}) {
        const auto answer = find(std::string("format=jsonv2&") + query);
        EXPECT_EQ(answer.status, 400) << query;
        EXPECT_EQ(answer.json().at("error").at("code"), 400) << query;
    }
}

TEST_F(SandboxGeocoder, WhatAPublicServiceWouldMindIsNoted) {
    ask({.url = service_.geocoderUrl() + "/reverse?lat=1&lon=1&format=xml", .headers = {{"User-Agent", ""}}});
    EXPECT_THAT(problems(), ElementsAre("user-agent is missing", "format is not jsonv2"));
}

}  // namespace

}  // namespace velmora::test
