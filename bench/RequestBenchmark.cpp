// What a request for an ad costs, from the call of the facade to its callback, over a bare POST of the same
// bytes with its answer parsed and the same texts written into a bare SQLite file, against a server that
// answers from memory; and what each ad that is stored already adds to it, over writing it barely.

#include "model/RecordOutput.h"
#include "model/VLAdSuggestionFinalState.h"
#include "model/VLCachedVelmoraAds.h"
#include "model/VLDefaults.h"
#include "model/VLDirectAdSuggestionRequestJsonParams.h"
#include "model/VLFinalStatesModel.h"
#include "net/VLRequestHeaders.h"
#include "net/VLWebServices.h"
#include "platform/Json.h"
#include "sandbox/ScriptedServer.h"
#include "support/Await.h"
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

/// What a thousand stored ads add to a request, and a bare write of them, in milliseconds.
std::pair<double, double> costOfStoredAds(BareStore& store) {
    constexpr int kStored = 1000;
    constexpr int kMore = 100;
    VLDefaults::setCachedAds(nullptr);
    const double without = requests(kMore);
    requests(kStored - kMore);
    const auto text = recordToJson(*VLDefaults::getCachedAds()).value();
    const double ours = (requests(kMore) - without) / kMore;
    const double bare = milliseconds([&] {
        for (int i = 0; i < kMore; ++i) store.set(text);
    });
    return {ours, bare / kMore};
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
        if (round % kMostStored == 0) VLDefaults::setCachedAds(nullptr);
        storeTenStates();
        const auto body = recordToJson(VLDirectAdSuggestionRequestJsonParams(
                                           2, kZone, VLDefaults::getFinalStates(), nullptr))
                              .value();
        const auto headers = headersOf();
        const auto states = recordToJson(*VLDefaults::getFinalStates()).value();
        const auto ads = recordToJson(*VLDefaults::getCachedAds()).value();
        bare.push_back(milliseconds([&] {
            const auto answer =
                boost::json::parse(curl.post(VLWebServices::getSuggestionsUrl(), body, headers));
            if (!answer.as_object().contains("suggestions")) std::_Exit(2);
            store.set(states);
            store.set(ads);
        }));
        const auto times = request();
        calls.push_back(times.call);
        ours.push_back(times.available);
    }
    heading("A request for a streamed ad, p50");
    int beyond = verdict("to onAdAvailable", median(ours), median(bare), 1.3);
    std::printf("  the call itself: %.0f us (at most 100)\n", median(calls) * 1000);
    const auto [stored, written] = costOfStoredAds(store);
    beyond += verdict("what 1000 stored ads add", stored, written, 4);
    std::filesystem::remove_all(folder);
    return beyond > 0 || median(calls) > 0.1 ? 1 : 0;
}
