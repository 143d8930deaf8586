// Leaves main while a callback of one request still runs and the answers of others wait behind it. Ends with
// status 0 when none of them is called any more.

#include "harness/Await.h"

#include <cstdlib>

#include <velmora/velmora.h>

namespace {

constexpr int kRequests = 8;

struct Calls {
    velmora::test::Await<bool> begun;
    velmora::test::Await<bool> mayReturn;
};

/// Outlives everything.
Calls& calls() {
    static auto* const instance = new Calls;
    return *instance;
}

void onAnswer() {
    calls().begun.add(true);
    if (!calls().mayReturn.count(1)) std::_Exit(3);
}

/// After the library's own: it was there first.
void workAtTheEnd() {
    calls().mayReturn.add(true);
    if (calls().begun.count(2, std::chrono::seconds(1))) std::_Exit(4);
}

}  // namespace

int main() {
    std::atexit(workAtTheEnd);
    for (int i = 0; i < kRequests; ++i) {
        velmora::Velmora::requestAdForZone(
            "zone", [](const auto&) { onAnswer(); }, [] { onAnswer(); }, [](const auto&) { onAnswer(); },
            [](const auto&) { onAnswer(); });
    }
    return calls().begun.count(1) ? 0 : 2;
}
