#include "model/VLAdSuggestionFinalState.h"
#include "model/VLCachedDoneAdSuggestions.h"
#include "model/VLCachedVelmoraAds.h"
#include "model/VLDoneAdSuggestion.h"
#include "model/VLFinalStatesModel.h"
#include "model/VelmoraAdState.h"
#include "platform/Directories.h"
#include "store/VLDefaults.h"
#include "support/Process.h"
#include "support/Records.h"
#include "support/StoreFiles.h"

#include <velmora/VelmoraAd.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <string>
#include <thread>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

std::string idOf(const std::string& writer, int number) { return writer + "-" + std::to_string(number); }

/// Stores an ad, a done suggestion and a state of this number, and looks that they are there: the store may
/// be held for longer than a call waits.
void store(const std::string& writer, int number) {
    const auto id = idOf(writer, number);
    const auto hasId = [&](const auto& one) { return platform::asString(one->suggestionId) == id; };
    const auto ad = read<VelmoraAd>(R"({"mAd": {"suggestionId": ")" + id + "\"}}");
    const auto done = read<VLDoneAdSuggestion>(R"({"suggestionId": ")" + id + "\"}");
    const auto isReady = [&] {
        const auto ads = VLDefaults::getCachedAds()->cachedVelmoraAds.get();
        return std::any_of(ads->begin(), ads->end(), [&](const auto& one) { return one->getId() == id; });
    };
    const auto isDone = [&] {
        const auto all = VLDefaults::getDoneAdSuggestions();
        return all && std::any_of(all->begin(), all->end(), hasId);
    };
    /// What the state of this writer says; -1 before its first word.
    const auto lastState = [&] {
        std::int64_t last = -1;
        const auto states = VLDefaults::getFinalStates()->getStates();
        for (const auto& one : *states) {
            const auto record = written(*one);
            const auto* n = record.at("extraInfo").as_object().if_contains("n");
            if (record.at("suggestionId") == Value(writer) && n != nullptr) last = n->as_int64();
        }
        return last;
    };
    // What it stored last is what the other one has not written over.
    EXPECT_GE(lastState(), number - 1);
    while (!isReady()) VLDefaults::cacheNewAd(ad);
    while (!isDone()) VLDefaults::addDoneAdSuggestion(done);
    while (lastState() != number) {
        VLDefaults::changeFinalStates([&](VLFinalStatesModel& states) {
            states.updateSuggestionExtraInfo(writer, "n", Property(number));
        });
    }
}

TEST(Writers, TwoProcessesOfOneApplicationLoseNothingThoughOneIsKilledAgainAndAgain) {
    constexpr int kNumbers = 120;
    constexpr int kKills = 20;
    ASSERT_TRUE(Process([] {
                    VLDefaults::setFinalStates(read<VLFinalStatesModel>(
                        R"({"states": [{"suggestionId": "steady", "state": 2, "extraInfo": {}},
                                       {"suggestionId": "killed", "state": 2, "extraInfo": {}}]})"));
                }).succeeded());
    Pipe stored;
    Process steady([] {
        for (int number = 0; number < kNumbers; ++number) store("steady", number);
    });
    std::mt19937 random(1);
    int next = 0;
    for (int round = 0; round < kKills; ++round) {
        Pipe told;
        Process killed([&] {
            for (int number = next;; ++number) {
                store("killed", number);
                told.write(number);
            }
        });
        told.closeWriting();
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % 100));
        killed.kill();
        while (const auto number = told.read()) next = *number + 1;
    }
    EXPECT_TRUE(steady.succeeded());
    EXPECT_GT(next, 0);

    Stranger stranger(platform::applicationDataDirectory() / "defaults.sqlite3");
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
    EXPECT_TRUE(movedAside(platform::applicationDataDirectory()).empty());
}

}  // namespace

}  // namespace velmora::test
