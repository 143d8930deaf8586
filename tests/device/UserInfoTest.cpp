#include <velmora/velmora.h>

#include "device/GeoInfo.h"
#include "device/GeoInfoLocationIOS.h"
#include "harness/EventLoop.h"
#include "platform/Location.h"
#include "platform/Telephony.h"
#include "sandbox/Sandbox.h"
#include "support/Environment.h"
#include "support/Program.h"
#include "support/Records.h"
#include "support/SystemServices.h"
#include "tools/UserInfoGate.h"

#include <chrono>
#include <filesystem>

#include <QGuiApplication>
#include <QScreen>
#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using namespace std::chrono_literals;
using platform::LocationManager;

/// The screen and the application are those of this program, and the gate is open.
class UserInfo : public testing::Test {
protected:
    UserInfo() { VLUserExtraInfoModelGate::open(); }

    /// Once the services of the desktop have been heard.
    static std::shared_ptr<VLUserExtraInfoModel> whenTheyAreHeard() {
        runUntil([] { return platform::Telephony::subscriberCellularProvider().has_value(); }, 5s);
        runUntil(&LocationManager::locationServicesEnabled, 5s);
        return VLUserExtraInfoModel::getInstance();
    }

    const Environment language_{"LANGUAGE", "fa_IR:en"};
};

TEST(UserInfoGate, IsShut) {
    for (int time = 0; time < 3; ++time) EXPECT_EQ(VLUserExtraInfoModel::getInstance(), nullptr);
}

TEST_F(UserInfo, WithoutAnyServiceItHasWhatTheMachineItselfTells) {
    const NoSystemServices none;
    auto record = written(*VLUserExtraInfoModel::getInstance()).as_object();
    const auto* screen = QGuiApplication::primaryScreen();
    const auto size = screen->size();
    const auto scaled = [&](double number) { return double(float(number * screen->devicePixelRatio())); };
    EXPECT_EQ(record["screenWidth"], scaled(size.width()));
    EXPECT_EQ(record["screenHeight"], scaled(size.height()));
    EXPECT_EQ(record["screenDensity"], scaled(160));
    EXPECT_EQ(record["screenOrientation"], size.width() > size.height() ? 2 : 1);
    for (const char* name : {"screenWidth", "screenHeight", "screenDensity", "screenOrientation"})
        record.erase(name);
    EXPECT_EQ(Value(record),
              valueOf(R"({"appVersion": "1.4", "deviceManufacturer": "Apple", "deviceBrand": "Apple",
                                         "deviceLanguage": "fa-IR"})"));
}

TEST_F(UserInfo, WithAllServicesItHasTheCarrierAndThePlaceToo) {
    const sandbox::Sandbox service;
    const Environment geocoder("VELMORA_GEOCODER_URL", service.geocoderUrl().c_str());
    const SystemServices services(
        R"({"modemmanager": {"sim": {"OperatorIdentifier": "43205"}},
            "geoclue": {"location": {"Latitude": 47.5, "Longitude": -45.5}}})");
    const auto info = whenTheyAreHeard();
    EXPECT_EQ(written(*info).at("carrier"), "Sandbox Mobile");
    EXPECT_EQ(written(*info).at("mcc"), 432);
    EXPECT_EQ(written(*info).at("mnc"), 5);
    Velmora::initializeWithAppKey("key");
    const auto url = VelmoraVAST::getVastUrlForZone("zone", 1, 3).value();
    for (const char* pair : {"&mcc=432&", "&mnc=5&", "&appVersion=1.4&"})
        EXPECT_NE(url.find(pair), std::string::npos) << pair << url;

    // The place is there at once, and is filled in later.
    const auto last = VLUserExtraInfoModel::getInstance();
    EXPECT_NE(last, info);
    EXPECT_EQ(written(*last).at("geoInfo"), valueOf(R"({"geoInfoLocation": {}})"));
    const auto place = last->geoInfo->geoInfoLocation.get();
    ASSERT_TRUE(runUntil([&] { return place->verticalAccuracy.get().has_value(); }));
    const auto location = written(*last).at("geoInfo").at("geoInfoLocation").as_object();
    EXPECT_EQ(location.size(), 15U);
    EXPECT_EQ(location.at("latitude"), 47.5);
    EXPECT_EQ(location.at("longitude"), -45.5);
    EXPECT_EQ(location.at("altitude"), 1191.0);
    EXPECT_EQ(location.at("horizontalAccuracy"), 12.5);
}

TEST_F(UserInfo, EachGetLocationTakesOneFixAndOverwritesThePlace) {
    const sandbox::Sandbox service;
    const Environment geocoder("VELMORA_GEOCODER_URL", service.geocoderUrl().c_str());
    const SystemServices services(
        R"({"geoclue": {"location": {"Latitude": 47.5, "Longitude": -45.5}, "times": 3}})");
    ASSERT_TRUE(runUntil(&LocationManager::locationServicesEnabled, 5s));
    const auto place = std::make_shared<GeoInfoLocationIOS>();
    for (const std::size_t questions : {1U, 2U}) {
        place->verticalAccuracy.set(std::nullopt);
        place->latitude.set(Property(1));
        // The second call takes the place of the first.
        place->getLocation();
        place->getLocation();
        ASSERT_TRUE(runUntil([&] { return place->verticalAccuracy.get().has_value(); }));
        EXPECT_EQ(place->latitude.get(), Property(47.5));
        EXPECT_FALSE(runUntil([&] { return service.await("geocoder", questions + 1, 0ms); }, 200ms));
    }
}

TEST_F(UserInfo, ACodeThatIsNoNumberIsAbsent) {
    const SystemServices services(R"({"modemmanager": {"sim": {"OperatorIdentifier": "4x235 "}}})");
    const auto record = written(*whenTheyAreHeard()).as_object();
    EXPECT_TRUE(record.contains("carrier"));
    EXPECT_FALSE(record.contains("mcc") || record.contains("mnc"));
    EXPECT_FALSE(record.contains("geoInfo"));
}

TEST_F(UserInfo, ThePlaceIsLeftOutOnceItIsRefused) {
    const SystemServices services(R"({"geoclue": {"error": "org.freedesktop.DBus.Error.AccessDenied"}})");
    EXPECT_TRUE(runUntil(&LocationManager::locationServicesEnabled, 5s));
    const auto before = VLUserExtraInfoModel::getInstance();
    EXPECT_NE(before->geoInfo, nullptr);
    const auto isDenied = [] {
        return LocationManager::authorizationStatus() == platform::LocationAuthorization::denied;
    };
    EXPECT_TRUE(runUntil(isDenied));
    EXPECT_EQ(VLUserExtraInfoModel::getInstance()->geoInfo, nullptr);
}

/// Runs the program that looks for the device's facts and for its place, until it has all or for so long.
void lookForFacts(const std::string& services, std::chrono::milliseconds most = 1500ms) {
    const SystemServices running(services);
    const auto ended = runProgram({VELMORA_FACTS, std::to_string(most.count())});
    EXPECT_EQ(ended.status, 0) << services;
    EXPECT_THAT(ended.output, testing::HasSubstr(R"("geoInfo":{"geoInfoLocation":{}})")) << services;
}

TEST(Facts, AProcessThatWaitsForItsPlaceLeavesInPeace) {
    lookForFacts(R"({"geoclue": {"silent": true}})");
    lookForFacts(R"({"geoclue": {"late": 30}})");
}

TEST(Facts, NothingIsKeptOfAPosition) {
    const sandbox::Sandbox service;
    const Environment geocoder("VELMORA_GEOCODER_URL", service.geocoderUrl().c_str());
    const TemporaryDirectory data;
    const Environment home("XDG_DATA_HOME", data.path().c_str());
    lookForFacts(R"({"geoclue": {"location": {"Latitude": 47.5, "Longitude": -45.5}}})", 20s);
    ASSERT_TRUE(service.await("geocoder"));
    for (const auto& entry : std::filesystem::recursive_directory_iterator(data.path()))
        EXPECT_FALSE(entry.is_regular_file()) << entry.path();
}

}  // namespace

}  // namespace velmora::test
