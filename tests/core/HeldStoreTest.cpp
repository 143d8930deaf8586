#include "support/HeldStore.h"

#include "platform/Directories.h"
#include "support/Environment.h"
#include "support/LogCapture.h"
#include "support/Threads.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
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
    constexpr int kThreads = 8;
    const Environment server("VELMORA_API_BASE_URL", "http://127.0.0.1:1/v2");
    const auto file = platform::applicationDataDirectory() / "defaults.sqlite3";
    std::filesystem::create_directories(file.parent_path());
    LogCapture log;
    // The first keeps readers waiting, too; a connection of ours would keep it from that.
    HeldStore whole(file, "PRAGMA journal_mode = DELETE; BEGIN EXCLUSIVE");
    HeldStore writing(file);

    const auto none = [](const auto&...) {};
    const std::array<Call, 7> calls{{
        {"SQLite alone", [&] { (void)bareWait(file); }},
        {"initializeWithAppKey",
         [] {
             const auto configuration = std::make_shared<VLConfiguration>();
             configuration->setAppUserId("new");
             Velmora::initializeWithAppKey("new", configuration);
         }},
        {"setDebugMode", [] { Velmora::setDebugMode(false); }},
        {"isDebugMode", [] { (void)Velmora::isDebugMode(); }},
        {"requestAdForZone", [&] { Velmora::requestAdForZone("zone", none, none, none, none); }},
        {"getVastUrlForZone", [] { (void)VelmoraVAST::getVastUrlForZone("zone", 1, 2); }},
        {"getVersion", [] { (void)Velmora::getVersion(); }},
    }};

    bool isReadable = false;
    for (auto* const held : {&whole, &writing}) {
        log.clear();
        held->hold();
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
        const auto url = VelmoraVAST::getVastUrlForZone("zone", 1, 2).value_or("");
        held->letGo();

        EXPECT_TRUE(log.has("locked"));
        EXPECT_EQ(url.find("old") != std::string::npos, isReadable) << url;
        std::array<Milliseconds, calls.size()> longest{};
        for (std::size_t i = 0; i < calls.size(); ++i) {
            for (const auto& thread : took) longest[i] = std::max(longest[i], thread[i]);
            std::cout << calls[i].name << " took " << longest[i].count() << " ms at most\n";
            EXPECT_LT(longest[i], 2 * longest[0]) << calls[i].name;
        }
        Velmora::initializeWithAppKey("old");
        isReadable = true;
    }
}

}  // namespace

}  // namespace velmora::test
