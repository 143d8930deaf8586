#include <velmora/velmora.h>

#include "device/VLDeviceAppInfo.h"
#include "log/VLLog.h"
#include "net/VLRequestHeaders.h"
#include "platform/UrlText.h"
#include "store/VLDefaults.h"
#include "support/Environment.h"
#include "support/LogCapture.h"
#include "support/Threads.h"
#include "tools/UserInfoGate.h"

#include <map>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using testing::IsSupersetOf;
using testing::Pair;

constexpr const char* kAwkwardText = "a b%25 + سلام";

std::string beforeQuery(const std::string& url) { return url.substr(0, url.find('?')); }

/// The pairs of the query, as a URL parser takes them apart. None of them may be there twice.
std::map<std::string, std::string> pairsOf(const std::string& url) {
    std::map<std::string, std::string> pairs;
    const auto items = platform::queryItems(url);
    EXPECT_TRUE(items.has_value()) << url;
    for (const auto& item : items.value_or(std::vector<platform::UrlQueryItem>()))
        EXPECT_TRUE(pairs.emplace(item.name, item.value.value_or("no value")).second) << item.name;
    return pairs;
}

class VastUrl : public testing::Test {
protected:
    /// As the second and all later launches of an application see it.
    void initialise(const std::string& key = "key") {
        auto configuration = std::make_shared<VLConfiguration>();
        configuration->setAppUserId("customer");
        Velmora::initializeWithAppKey(key, configuration);
        VLDefaults::setAuthorizationToken("token");
    }

    static std::map<std::string, std::string> pairs(int type = 1, int version = 3) {
        return pairsOf(VelmoraVAST::getVastUrlForZone("zone", type, version).value_or(""));
    }

    const Environment base_{"VELMORA_API_BASE_URL", "https://ads.example/v2"};
};

TEST_F(VastUrl, BeforeInitialisationThereIsNone) {
    const LogCapture log;
    VLLogger::setShallLog(true);
    EXPECT_EQ(VelmoraVAST::getVastUrlForZone("zone", 1, 3), std::nullopt);
    EXPECT_TRUE(log.has("Velmora must be initialized before requesting ad"));
}

TEST_F(VastUrl, ItNamesTheZoneTheDeviceAndTheUserAndHasTheHeadersToo) {
    initialise();
    VLDefaults::setVelmoraUserId("user");
    const auto url = VelmoraVAST::getVastUrlForZone("zone", 2, 2).value();
    EXPECT_EQ(beforeQuery(url), "https://ads.example/v2/pre-roll/zone/vast");
    EXPECT_NE(url.back(), '&');

    std::map<std::string, std::string> expected{
        {"secretKey", "key"},
        {"targetPlatform", "2"},
        {"osVersion", "22"},
        {"sdkVersion", "3.0.0"},
        {"sdkType", "video-sdk"},
        {"osId", VLDeviceAppInfo::deviceIdentifier().value()},
        {"osAdvertisingId", VLDeviceAppInfo::advertisingIdentifier().value()},
        {"vastVersion", "2"},
        {"mcc", "(null)"},
        {"mnc", "(null)"},
        {"prerollType", "2"},
        {"t-user-id", "user"},
    };
    for (const char* name :
         {"deviceModel", "screenDensity", "screenHeight", "screenOrientation", "screenWidth"})
        expected[name] = VLDeviceAppInfo::deviceModel().value();
    for (const auto& [name, value] : VLRequestHeaders::getHeaders()) expected[name] = value;
    auto found = pairsOf(url);
    // The clock goes on.
    for (auto* pairs : {&expected, &found}) EXPECT_EQ(pairs->erase("device-client-date"), 1U);
    EXPECT_EQ(found, expected);
    EXPECT_EQ(found.at("authorization"), "bearer token");
    EXPECT_EQ(found.at("customer-user-id"), "customer");
}

TEST_F(VastUrl, OnlyTypesAndVersionsThatThereAreStandInIt) {
    initialise();
    for (const int number : {-1, 0, 1, 2, 3, 4}) {
        const auto found = pairs(number, number);
        EXPECT_EQ(found.contains("prerollType"), number == 1 || number == 2) << number;
        EXPECT_EQ(found.contains("vastVersion"), number == 2 || number == 3) << number;
        EXPECT_FALSE(found.contains("t-user-id")) << number;
    }
    const char* const zone = "zone";
    for (const auto& url :
         {VelmoraVAST::getVastUrlForZone(zone, VLPrerollType::notSkippable, VLVastVersion::v3),
          VelmoraVAST::getVastUrlForZone(std::string(zone), VLPrerollType::notSkippable, VLVastVersion::v3)})
        EXPECT_THAT(pairsOf(url.value()), IsSupersetOf({Pair("prerollType", "1"), Pair("vastVersion", "3")}));
}

TEST_F(VastUrl, TextsOfAnyKindArriveAsTheyAre) {
    initialise(kAwkwardText);
    VLDefaults::setVelmoraUserId(kAwkwardText);
    auto found = pairs();
    for (const char* name : {"secretKey", "developer-key", "t-user-id"})
        EXPECT_EQ(found.at(name), kAwkwardText) << name;

    // What a query may hold is not encoded: such a value falls apart.
    VLDefaults::setVelmoraUserId("a&b=c&d");
    found = pairs();
    EXPECT_EQ(found.at("t-user-id"), "a");
    EXPECT_THAT(found, IsSupersetOf({Pair("b", "c"), Pair("d", "no value")}));
}

TEST_F(VastUrl, TheZoneIsPutInAsItStands) {
    initialise();
    const auto path = [](const auto& zone) {
        return beforeQuery(VelmoraVAST::getVastUrlForZone(zone, 1, 3).value());
    };
    EXPECT_EQ(path(std::string("a b%/c")), "https://ads.example/v2/pre-roll/a b%/c/vast");
    EXPECT_EQ(path(static_cast<const char*>(nullptr)), "https://ads.example/v2/pre-roll/(null)/vast");
}

TEST_F(VastUrl, WhatTheDeviceTellsOfItselfStandsInItOnceTheGateIsOpen) {
    initialise();
    VLUserExtraInfoModelGate::open();
    const Environment language("LANGUAGE", "fa_IR");
    const Environment noServices("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/bus");
    {
        // The thread sanitizer sees whether one reads what another fills.
        const Threads threads(8, [](int) {
            for (int round = 0; round < 20; ++round)
                EXPECT_THAT(pairs(),
                            IsSupersetOf({Pair("deviceBrand", "Apple"), Pair("deviceManufacturer", "Apple"),
                                          Pair("deviceLanguage", "fa-IR"), Pair("mcc", "(null)")}));
        });
    }
    VLUserExtraInfoModelGate::shut();
    EXPECT_FALSE(pairs().contains("deviceLanguage"));
}

}  // namespace

}  // namespace velmora::test
