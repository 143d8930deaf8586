#include "support/HeldStore.h"

#include "platform/Directories.h"
#include "support/Environment.h"
#include "support/LogCapture.h"
#include "support/Threads.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <functional>
#include <iostream>
#include <string>

#include <velmora/VelmoraVAST.h>
#include <velmora/velmora.h>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

/// A call of the public surface, and the longest time that it took on any thread.
struct Call {
    const char* name;
    std::function<void()> make;
};

TEST(HeldStore, NoCallWaitsForAnotherProcessLongerThanOnce) {
    // One wait and what a busy machine adds; initialising has three things to write, and each thread has
    // others before it.
    constexpr auto kMost = std::chrono::milliseconds(700);
    constexpr int kThreads = 8;
    const Environment server("VELMORA_API_BASE_URL", "http://127.0.0.1:1/v2");
    LogCapture log;
    HeldStore held(platform::applicationDataDirectory() / "defaults.sqlite3");

    const auto none = [](const auto&...) {};
    const std::array<Call, 6> calls{{
        {"initializeWithAppKey",
         [] {
             const auto configuration = std::make_shared<VLConfiguration>();
             configuration->setAppUserId("new");
             Velmora::initializeWithAppKey("new", configuration);
         }},
        {"setDebugMode", [] { Velmora::setDebugMode(true); }},
        {"isDebugMode", [] { EXPECT_TRUE(Velmora::isDebugMode()); }},
        {"requestAdForZone", [&] { Velmora::requestAdForZone("zone", none, none, none, none); }},
        {"getVastUrlForZone",
         [] {
             EXPECT_TRUE(VelmoraVAST::getVastUrlForZone("zone", 1, 2).value().find("old") !=
                         std::string::npos);
         }},
        {"getVersion", [] { (void)Velmora::getVersion(); }},
    }};
    Velmora::initializeWithAppKey("old");
    held.hold();

    std::array<std::array<Milliseconds, calls.size()>, kThreads> took{};
    {
        const Threads threads(kThreads, [&](int thread) {
            for (std::size_t i = 0; i < calls.size(); ++i) {
                // Each thread begins with another call.
                const auto call = (i + static_cast<std::size_t>(thread)) % calls.size();
                const auto start = std::chrono::steady_clock::now();
                calls[call].make();
                took[static_cast<std::size_t>(thread)][call] = std::chrono::steady_clock::now() - start;
            }
        });
    }
    held.letGo();

    for (std::size_t i = 0; i < calls.size(); ++i) {
        Milliseconds longest{};
        for (const auto& thread : took) longest = std::max(longest, thread[i]);
        std::cout << calls[i].name << " took " << longest.count() << " ms at most\n";
        EXPECT_LT(longest, kMost) << calls[i].name;
    }
    EXPECT_TRUE(log.has("locked"));
}

}  // namespace

}  // namespace velmora::test
