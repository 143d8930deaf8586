// A plugin of a host: its callbacks are in it, and go with it.

#include <atomic>
#include <memory>

#include <velmora/velmora.h>

namespace {

std::atomic<int> calls = 0;

/// Counts as the callbacks that hold it go.
struct Held {
    ~Held() { ++calls; }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) int startPlugin();
extern "C" __attribute__((visibility("default"))) int stopPlugin();

int startPlugin() {
    velmora::Velmora::initializeWithAppKey("plugin");
    velmora::Velmora::setMainQueue([](const auto&) { ++calls; });
    const auto held = std::make_shared<Held>();
    for (int number = 0; number < 5; ++number) {
        velmora::Velmora::requestAdForZone(
            "zone", [held](const auto&) { ++calls; }, [held] { ++calls; }, [held](const auto&) { ++calls; },
            [held](const auto&) { ++calls; });
    }
    return calls;
}

int stopPlugin() {
    velmora::Velmora::shutDown();
    return calls;
}
