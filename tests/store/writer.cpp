// One of two processes of an application that store at once. Without words it stores what both begin with;
// with a name, a number and perhaps a second one, it stores an ad, a done suggestion and a state of its own
// for each number from the first on, up to the second or for ever, and says each number when they are there.
// Ends with status 1 when what it stored last was written over.

#include "model/VLAdSuggestionFinalState.h"
#include "model/VLCachedVelmoraAds.h"
#include "model/VLDoneAdSuggestion.h"
#include "model/VLFinalStatesModel.h"
#include "model/VelmoraAdState.h"
#include "platform/Json.h"
#include "store/VLDefaults.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <iostream>
#include <string>

#include <velmora/VelmoraAd.h>

using namespace velmora;

namespace {

template <class Record>
std::shared_ptr<Record> read(const std::string& json) {
    auto input = platform::parseJson(json).value();
    return recordFrom<Record>(input.if_object());
}

/// What the state of this writer says; -1 before its first word.
std::int64_t lastState(const std::string& writer) {
    std::int64_t last = -1;
    const auto states = VLDefaults::getFinalStates()->getStates();
    for (const auto& one : *states) {
        const auto& info = one->getExtraInfo();
        const auto* n = info && info->is_object() ? info->as_object().if_contains("n") : nullptr;
        if (one->getSuggestionId() == Value(writer) && n != nullptr) last = n->as_int64();
    }
    return last;
}

/// Looks whether it is there: the store may be held for longer than a call waits.
bool store(const std::string& writer, int number) {
    const auto id = writer + "-" + std::to_string(number);
    const auto ad = read<VelmoraAd>(R"({"mAd": {"suggestionId": ")" + id + "\"}}");
    const auto done = read<VLDoneAdSuggestion>(R"({"suggestionId": ")" + id + "\"}");
    const auto isReady = [&] {
        const auto ads = VLDefaults::getCachedAds()->cachedVelmoraAds.get();
        return std::any_of(ads->begin(), ads->end(), [&](const auto& one) { return one->getId() == id; });
    };
    const auto isDone = [&] {
        const auto all = VLDefaults::getDoneAdSuggestions();
        return all && std::any_of(all->begin(), all->end(), [&](const auto& one) { return one->id() == id; });
    };
    if (lastState(writer) < number - 1) return false;
    while (!isReady()) VLDefaults::cacheNewAd(ad);
    while (!isDone()) VLDefaults::addDoneAdSuggestion(done);
    while (lastState(writer) != number) {
        VLDefaults::changeFinalStates([&](VLFinalStatesModel& states) {
            states.updateSuggestionExtraInfo(writer, "n", Property(number));
        });
    }
    return true;
}

}  // namespace

int main(int count, char** words) {
    if (count < 3) {
        VLDefaults::setFinalStates(read<VLFinalStatesModel>(
            R"({"states": [{"suggestionId": "steady", "state": 2, "extraInfo": {}},
                           {"suggestionId": "killed", "state": 2, "extraInfo": {}}]})"));
        return 0;
    }
    const int end = count > 3 ? std::atoi(words[3]) : INT_MAX;
    for (int number = std::atoi(words[2]); number < end; ++number) {
        if (!store(words[1], number)) return 1;
        std::cout << number << std::endl;
    }
}
