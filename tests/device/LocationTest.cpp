#include "platform/Location.h"

#include "harness/EventLoop.h"
#include "harness/Files.h"
#include "harness/TemporaryDirectory.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/SystemServices.h"

#include <chrono>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

using namespace std::chrono_literals;
using platform::Location;
using platform::LocationAuthorization;
using platform::LocationManager;

class Listener : public platform::LocationManagerDelegate {
public:
    void locationManagerDidUpdateLocations(LocationManager&,
                                           const std::vector<Location>& locations) override {
        heard.insert(heard.end(), locations.begin(), locations.end());
    }

    std::vector<Location> heard;
};

bool isEnabledInTheEnd() { return runUntil(&LocationManager::locationServicesEnabled, 1500ms); }

/// A service with these parameters, and who listens to it.
class Located {
public:
    explicit Located(const std::string& parameters) : services_(R"({"geoclue": )" + parameters + "}") {
        manager->setDelegate(listener);
        manager->startUpdatingLocation();
    }

    [[nodiscard]] bool hears(std::chrono::milliseconds most = 20s) const {
        return runUntil([this] { return !listener->heard.empty(); }, most);
    }

private:
    const SystemServices services_;

public:
    const std::shared_ptr<Listener> listener = std::make_shared<Listener>();
    const std::shared_ptr<LocationManager> manager = std::make_shared<LocationManager>();
};

TEST(LocationManager, AFixHasItsCoordinatesItsAltitudeAndBothAccuracies) {
    const Located located("{}");
    EXPECT_TRUE(isEnabledInTheEnd());
    EXPECT_EQ(LocationManager::authorizationStatus(), LocationAuthorization::notDetermined);
    ASSERT_TRUE(located.hears());
    const auto& fix = located.listener->heard.front();
    EXPECT_EQ(fix.latitude, 35.6895);
    EXPECT_EQ(fix.longitude, 51.389);
    EXPECT_EQ(fix.altitude, 1191.0);
    EXPECT_EQ(fix.horizontalAccuracy, 12.5);
    // The service does not measure it.
    EXPECT_LT(fix.verticalAccuracy, 0);
    EXPECT_EQ(LocationManager::authorizationStatus(), LocationAuthorization::authorized);
}

TEST(LocationManager, WhatWasNotMeasuredIsNotMadeUp) {
    const Located located(R"({"location": {"Altitude": -1.7976931348623157e308}})");
    ASSERT_TRUE(located.hears());
    EXPECT_EQ(located.listener->heard.front().altitude, 0);
    EXPECT_LT(located.listener->heard.front().verticalAccuracy, 0);
}

TEST(LocationManager, TheEquatorAndTheFirstMeridianAreOnTheMap) {
    const Located located(R"({"location": {"Latitude": 0.0, "Longitude": 0.0}})");
    ASSERT_TRUE(located.hears());
    EXPECT_EQ(located.listener->heard.front().latitude, 0);
    EXPECT_EQ(located.listener->heard.front().longitude, 0);
}

TEST(LocationManager, AStoppedOneIsHeardNoMore) {
    const Located located("{}");
    located.manager->stopUpdatingLocation();
    EXPECT_FALSE(located.hears(1s));
    located.manager->startUpdatingLocation();
    EXPECT_TRUE(located.hears());
}

TEST(LocationManager, ARefusalIsRememberedForAWhile) {
    const LogCapture log;
    UseManualClock clock;
    const Located located(R"({"error": "org.freedesktop.DBus.Error.AccessDenied"})");
    EXPECT_TRUE(isEnabledInTheEnd());
    EXPECT_TRUE(
        runUntil([] { return LocationManager::authorizationStatus() == LocationAuthorization::denied; }));
    EXPECT_FALSE(located.hears(100ms));
    EXPECT_TRUE(log.has("refuses"));
    clock->advance(std::chrono::minutes(9));
    EXPECT_EQ(LocationManager::authorizationStatus(), LocationAuthorization::denied);
    clock->advance(std::chrono::minutes(2));
    EXPECT_EQ(LocationManager::authorizationStatus(), LocationAuthorization::notDetermined);
}

TEST(LocationManager, AServiceThatFailsOrGoesIsNoRefusalAndIsAskedAnew) {
    for (const char* parameters : {R"({"error": "org.freedesktop.DBus.Error.Failed"})",
                                   R"({"client": "no path"})", R"({"gone": true})"}) {
        SCOPED_TRACE(parameters);
        const LogCapture log;
        const Located located(parameters);
        EXPECT_TRUE(runUntil([&] { return log.has("The location service "); }));
        EXPECT_EQ(LocationManager::authorizationStatus(), LocationAuthorization::notDetermined);
        EXPECT_FALSE(located.hears(100ms));
        const auto lines = log.lines().size();
        located.manager->startUpdatingLocation();
        EXPECT_TRUE(runUntil([&] { return log.lines().size() > lines; }));
    }
}

TEST(LocationManager, ABusThatSaysNothingKeepsNobodyWaiting) {
    const SilentBus bus;
    const auto listener = std::make_shared<Listener>();
    const auto manager = std::make_shared<LocationManager>();
    manager->setDelegate(listener);
    const auto start = std::chrono::steady_clock::now();
    manager->startUpdatingLocation();
    EXPECT_FALSE(LocationManager::locationServicesEnabled());
    manager->stopUpdatingLocation();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 4s);
}

TEST(LocationManager, AServiceThatIsLateKeepsNobodyWaitingAndIsHeardLater) {
    const TemporaryDirectory folder;
    const Located located(R"({"until": ")" + (folder / "told").string() + R"("})");
    // Who waited here would wait for as long as a call may take.
    const auto start = std::chrono::steady_clock::now();
    for (int turn = 0; turn < 10; ++turn) settle();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 4s);
    writeContent(folder / "told", "");
    EXPECT_TRUE(located.hears());
}

class LocationOf : public testing::TestWithParam<std::pair<std::string, std::string>> {};

TEST_P(LocationOf, IsNone) {
    const Located located(GetParam().second);
    EXPECT_FALSE(located.hears(1s));
}

INSTANTIATE_TEST_SUITE_P(Service, LocationOf,
                         testing::Values(std::pair("ThatIsSilent", R"({"silent": true})"),
                                         std::pair("ThatIsOffTheMap", R"({"location": {"Latitude": 91.0}})"),
                                         std::pair("ThatHasNoNumber", R"({"location": {"Latitude": NaN}})"),
                                         std::pair("ThatAnswersInAnotherKind",
                                                   R"({"location": {"Latitude": "north"}})")),
                         [](const auto& one) { return one.param.first; });

TEST(LocationServices, AreOffWhereTheUserTurnedThemOffAndWhereTheyAreMissing) {
    {
        const NoSystemServices none;
        EXPECT_FALSE(LocationManager::locationServicesEnabled());
    }
    const SystemServices services(R"({"geoclue": {"level": 0}})");
    EXPECT_FALSE(isEnabledInTheEnd());
}

}  // namespace

}  // namespace velmora::test
