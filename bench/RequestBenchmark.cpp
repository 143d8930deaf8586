// What a request for an ad costs, from the call of the facade to its callback, over the same work with the
// bare libraries: the states read, a POST of the same bytes, its answer parsed, the new states written and
// the ad added to those in a bare SQLite file. The server answers from memory. And what each ad that is
// stored already adds to it, over what it adds to the bare file.

#include "harness/Await.h"
#include "model/RecordOutput.h"
#include "model/VLAdSuggestionFinalState.h"
#include "model/VLCachedVelmoraAds.h"
#include "model/VLFinalStatesModel.h"
#include "net/VLDirectAdSuggestionRequestJsonParams.h"
#include "net/VLRequestHeaders.h"
#include "net/VLWebServices.h"
#include "platform/Json.h"
#include "sandbox/ScriptedServer.h"
#include "store/VLDefaults.h"
#include "support/BareCurl.h"
#include "support/BareStore.h"
#include "support/Measure.h"
#include "support/Suggestions.h"

#include <velmora/velmora.h>

#include <cstdlib>
#include <filesystem>
#include <utility>

#include <stdlib.h>

using namespace velmora;
using namespace velmora::bench;

namespace {

constexpr int kRounds = 1000;
constexpr int kMostStored = 20;
constexpr const char* kZone = "video";
constexpr const char* kStates = "states";
constexpr const char* kAds = "cachedVelmoraAds";
constexpr const char* kPathOfAds = "$.cachedVelmoraAds[#]";

struct Times {
    double call;
    double available;
};

[[noreturn]] void fail() {
    std::fprintf(stderr, "no ad came\n");
    std::_Exit(2);
}

/// How long the call took, and how long it was to `onAdAvailable`.
Times request() {
    test::Await<double> end;
    const auto start = Clock::now();
    Velmora::requestAdForZone(
        kZone, [&](const auto&) { end.add(millisecondsSince(start)); }, fail, [](const auto&) { fail(); },
        [](const auto&) {});
    const double call = millisecondsSince(start);
    if (!end.count(1)) fail();
    return {call, end.values().front()};
}

/// So many requests at once, and how long it was to the last ad.
double requests(int count) {
    test::Await<bool> ends;
    return milliseconds([&] {
        for (int i = 0; i < count; ++i) {
            Velmora::requestAdForZone(
                kZone, [&](const auto&) { ends.add(true); }, fail, [](const auto&) { fail(); },
                [](const auto&) {});
        }
        if (!ends.count(static_cast<std::size_t>(count))) fail();
    });
}

/// The ads that are stored, and the last of them.
struct StoredAds {
    std::string all = recordToJson(*VLDefaults::getCachedAds()).value();
    std::string last = boost::json::serialize(boost::json::parse(all).at(kAds).as_array().back());
};

void appendTo(BareStore& store, const std::string& ad) { store.append(ad, kPathOfAds, kAds); }

/// What a thousand stored ads add to each of a hundred requests, and to adding as many ads to the bare file,
/// in milliseconds.
std::pair<double, double> costOfStoredAds(BareStore& store) {
    constexpr int kStored = 1000;
    constexpr int kMore = 100;
    const auto appends = [&](const StoredAds& to) {
        store.set(to.all, kAds);
        return milliseconds([&] {
            for (int i = 0; i < kMore; ++i) appendTo(store, to.last);
        });
    };
    VLDefaults::setCachedAds(nullptr);
    requests(1);
    const double bareWithout = appends(StoredAds());
    const double without = requests(kMore);
    requests(kStored - kMore);
    const double bare = appends(StoredAds());
    return {(requests(kMore) - without) / kMore, (bare - bareWithout) / kMore};
}

BareCurl::Headers headersOf() {
    BareCurl::Headers lines{"Content-Type: application/json", "Accept: application/json"};
    for (const auto& [name, value] : VLRequestHeaders::getHeaders()) {
        auto line = name;
        lines.push_back(line.append(": ").append(value));
    }
    return lines;
}

/// What a first run, and ten answers later, leaves to be sent with each request.
void storeTenStates() {
    std::vector<std::shared_ptr<VLAdSuggestionFinalState>> states;
    for (int i = 0; i < 10; ++i) {
        states.push_back(std::make_shared<VLAdSuggestionFinalState>(
            Value("state-" + std::to_string(i)), VLFinalState::initial, Value(Dictionary())));
    }
    const auto list = std::make_shared<VLFinalStatesModel>();
    list->setStates(makeList(std::move(states)));
    VLDefaults::setFinalStates(list);
}

}  // namespace

int main() {
    std::string folder = (std::filesystem::temp_directory_path() / "velmora-bench-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) return 2;
    setenv("XDG_DATA_HOME", folder.c_str(), 1);
    const auto text = bench::answer(5);
    const sandbox::ScriptedServer server([&](const auto&) { return sandbox::Script::answer(200, text); });
    setenv("VELMORA_API_BASE_URL", server.url("/v2").c_str(), 1);
    const auto configuration = std::make_shared<VLConfiguration>();
    configuration->setDebugMode(false);
    Velmora::initializeWithAppKey("bench-key", configuration);
    // Opens the connection.
    request();

    BareCurl curl;
    BareStore store(std::filesystem::path(folder) / "bare.sqlite3");
    std::vector<double> calls;
    std::vector<double> ours;
    std::vector<double> bare;
    for (int round = 0; round < kRounds; ++round) {
        // An application shows its ads and they go: some are there, and the list does not grow.
        if (round % kMostStored == 0) {
            VLDefaults::setCachedAds(nullptr);
            requests(1);
        }
        storeTenStates();
        const auto body = recordToJson(VLDirectAdSuggestionRequestJsonParams(
                                           2, kZone, VLDefaults::getFinalStates(), nullptr))
                              .value();
        const auto headers = headersOf();
        const auto states = recordToJson(*VLDefaults::getFinalStates()).value();
        const StoredAds ads;
        store.set(states, kStates);
        store.set(ads.all, kAds);
        bare.push_back(milliseconds([&] {
            if (!store.get(kStates).is_object()) std::_Exit(2);
            const auto answer =
                boost::json::parse(curl.post(VLWebServices::getSuggestionsUrl(), body, headers));
            if (!answer.as_object().contains("suggestions")) std::_Exit(2);
            store.set(states, kStates);
            appendTo(store, ads.last);
        }));
        const auto times = request();
        calls.push_back(times.call);
        ours.push_back(times.available);
    }
    heading("A request for a streamed ad, p50");
    int beyond = verdict("to onAdAvailable", median(ours), median(bare), 1.3 + kHandOvers / median(bare));
    std::printf("  the call itself: %.0f us (at most 100)\n", median(calls) * 1000);
    const auto [stored, written] = costOfStoredAds(store);
    beyond += verdict("what 1000 stored ads add", stored, written, 2);
    std::filesystem::remove_all(folder);
    return beyond > 0 || median(calls) > 0.1 ? 1 : 0;
}
