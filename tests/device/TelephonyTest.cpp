#include "platform/Telephony.h"

#include "harness/EventLoop.h"
#include "harness/Files.h"
#include "harness/TemporaryDirectory.h"
#include "support/SystemServices.h"

#include <chrono>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

using namespace std::chrono_literals;
using platform::Carrier;
using platform::Telephony;
using Text = std::optional<std::string>;

/// Asked as often as it takes to have an answer.
std::optional<Carrier> carrierInTheEnd() {
    std::optional<Carrier> carrier;
    runUntil([&] { return (carrier = Telephony::subscriberCellularProvider()).has_value(); }, 5s);
    return carrier;
}

struct Modem {
    std::string title;
    std::string parameters;
    Text name;
    Text country;
    Text network;
};

class TelephonyOf : public testing::TestWithParam<Modem> {};

TEST_P(TelephonyOf, TheCardSaysWhoTheCarrierIs) {
    const auto& modem = GetParam();
    const SystemServices services(R"({"modemmanager": )" + modem.parameters + "}");
    const auto carrier = carrierInTheEnd();
    ASSERT_TRUE(carrier);
    EXPECT_EQ(carrier->name, modem.name);
    EXPECT_EQ(carrier->mobileCountryCode, modem.country);
    EXPECT_EQ(carrier->mobileNetworkCode, modem.network);
}

const Modem kModems[]{
    {"Usual", "{}", "Sandbox Mobile", "432", "35"},
    {"LeadingZeros", R"({"sim": {"OperatorIdentifier": "00105"}})", "Sandbox Mobile", "001", "05"},
    {"ThreeDigitsOfNetwork", R"({"sim": {"OperatorIdentifier": "310260"}})", "Sandbox Mobile", "310", "260"},
    {"NamedByTheNetworkAtHome", R"({"sim": {"OperatorName": ""}})", "Sandbox Mobile Network", "432", "35"},
    {"NotNamedByTheNetworkAbroad", R"({"sim": {"OperatorName": ""}, "network": {"OperatorCode": "26201"}})",
     std::nullopt, "432", "35"},
    {"CountryOnly", R"({"sim": {"OperatorIdentifier": "432"}})", "Sandbox Mobile", "432", std::nullopt},
    {"CodeOfAnotherKind", R"({"sim": {"OperatorIdentifier": 43235}})", "Sandbox Mobile", std::nullopt,
     std::nullopt},
    {"EndlessName", R"({"endless": 5000000})", std::nullopt, "432", "35"},
};

INSTANTIATE_TEST_SUITE_P(Modems, TelephonyOf, testing::ValuesIn(kModems),
                         [](const auto& one) { return one.param.title; });

class TelephonyWithout : public testing::TestWithParam<std::pair<std::string, std::string>> {};

TEST_P(TelephonyWithout, ThereIsNoCarrier) {
    const SystemServices services(GetParam().second);
    EXPECT_FALSE(runUntil([] { return Telephony::subscriberCellularProvider().has_value(); }, 1500ms));
}

INSTANTIATE_TEST_SUITE_P(
    Anything, TelephonyWithout,
    testing::Values(
        std::pair("Service", "{}"), std::pair("Objects", R"({"modemmanager": {"objects": "none"}})"),
        std::pair("Card", R"({"modemmanager": {"modem": {"Sim": "no path"}}})"),
        std::pair("TextsOnTheCard",
                  R"({"modemmanager": {"sim": {"OperatorIdentifier": "", "OperatorName": ""}}})")),
    [](const auto& one) { return one.param.first; });

TEST(Telephony, WithoutABusThereIsNoCarrier) {
    const NoSystemServices none;
    EXPECT_FALSE(Telephony::subscriberCellularProvider());
}

TEST(Telephony, AServiceThatIsLateKeepsNobodyWaitingAndIsHeardLater) {
    const TemporaryDirectory folder;
    const SystemServices services(R"({"modemmanager": {"until": ")" + (folder / "told").string() + R"("}})");
    const auto start = std::chrono::steady_clock::now();
    for (int time = 0; time < 10; ++time) EXPECT_FALSE(Telephony::subscriberCellularProvider());
    // Each would wait for as long as a call may take.
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
    writeContent(folder / "told", "");
    const auto carrier = carrierInTheEnd();
    ASSERT_TRUE(carrier);
    EXPECT_EQ(carrier->name, "Sandbox Mobile");
}

TEST(Telephony, ABusThatSaysNothingKeepsNobodyWaiting) {
    const SilentBus bus;
    const auto start = std::chrono::steady_clock::now();
    for (int time = 0; time < 100; ++time) EXPECT_FALSE(Telephony::subscriberCellularProvider());
    // Each would wait for as long as a bus may take.
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20s);
}

}  // namespace

}  // namespace velmora::test
