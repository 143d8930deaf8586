#include "harness/TemporaryDirectory.h"
#include "support/Program.h"
#include "support/Records.h"
#include "support/StoreFiles.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <random>
#include <string>
#include <thread>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

std::string idOf(const std::string& writer, int number) { return writer + "-" + std::to_string(number); }

TEST(Writers, TwoProcessesOfOneApplicationLoseNothingThoughOneIsKilledAgainAndAgain) {
    constexpr int kNumbers = 120;
    constexpr int kKills = 20;
    const TemporaryDirectory data;
    const std::map<std::string, std::string> environment{{"XDG_DATA_HOME", data.path()}};
    ASSERT_EQ(runProgram({VELMORA_WRITER}, environment).status, 0);
    std::mt19937 random(1);
    int next = 0;
    RunningProgram steady({VELMORA_WRITER, "steady", "0", std::to_string(kNumbers)}, environment);
    for (int round = 0; round < kKills; ++round) {
        RunningProgram killed({VELMORA_WRITER, "killed", std::to_string(next)}, environment);
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % 150));
        killed.kill();
        for (auto line = killed.line(); !line.empty(); line = killed.line()) next = std::stoi(line) + 1;
    }
    for (int number = 0; number < kNumbers; ++number) EXPECT_EQ(steady.line(), std::to_string(number));
    EXPECT_EQ(steady.wait(), 0);
    EXPECT_GT(next, 0);

    const auto folder = data / "writer/velmora";
    Stranger stranger(folder / "defaults.sqlite3");
    const auto ads = valueOf(stranger.valueOf("cachedAds").value()).at("cachedVelmoraAds").as_array();
    const auto done =
        valueOf(stranger.valueOf("cachedDoneAdSuggestions").value()).at("doneAdSuggestions").as_array();
    const auto states = valueOf(stranger.valueOf("finalstates").value()).at("states").as_array();
    const auto count = [](const Array& list, const std::string& id) {
        return std::count_if(list.begin(), list.end(), [&](const Value& one) {
            const auto& record = one.as_object();
            return (record.contains("mAd") ? record.at("mAd") : one).at("suggestionId") == Value(id);
        });
    };
    for (const auto& [writer, numbers] : {std::pair("steady", kNumbers), std::pair("killed", next)}) {
        for (int number = 0; number < numbers; ++number) {
            EXPECT_GE(count(ads, idOf(writer, number)), 1) << writer << number;
            EXPECT_GE(count(done, idOf(writer, number)), 1) << writer << number;
        }
    }
    EXPECT_EQ(states.at(0).at("extraInfo").at("n"), kNumbers - 1);
    EXPECT_GE(states.at(1).at("extraInfo").at("n").as_int64(), next - 1);
    EXPECT_TRUE(movedAside(folder).empty());
}

}  // namespace

}  // namespace velmora::test
