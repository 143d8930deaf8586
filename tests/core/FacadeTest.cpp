#include "core/VelmoraManager.h"
#include "harness/TemporaryDirectory.h"
#include "log/VLLog.h"
#include "store/VLDefaults.h"
#include "support/ApplicationStore.h"
#include "support/Environment.h"
#include "support/HeldStore.h"
#include "support/LogCapture.h"
#include "support/Program.h"
#include "support/Threads.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <velmora/VelmoraVAST.h>
#include <velmora/velmora.h>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

using Lines = std::vector<std::string>;

/// Begins with an empty store and logging on.
class Facade : public testing::Test {
protected:
    Facade() {
        VLLogger::setShallLog(true);
        // Nobody answers there.
        ::setenv("VELMORA_API_BASE_URL", "http://127.0.0.1:1/v2", 1);
    }

    ApplicationStore store_;
    LogCapture log_;
};

std::shared_ptr<VLConfiguration> configuration(bool debugMode, std::optional<std::string> appUserId) {
    auto made = std::make_shared<VLConfiguration>();
    made->setDebugMode(debugMode);
    made->setAppUserId(std::move(appUserId));
    return made;
}

TEST_F(Facade, InitialisationStoresWhatTheConfigurationSays) {
    const struct {
        const char* name;
        std::shared_ptr<VLConfiguration> configuration;
        bool debugMode;
        std::optional<std::string> appUserId;
    } cases[] = {
        {"none", nullptr, true, std::nullopt},
        {"unfilled", std::make_shared<VLConfiguration>(), false, std::nullopt},
        {"debug mode on", configuration(true, "user"), true, "user"},
        {"debug mode off", configuration(false, ""), false, ""},
    };

    for (const auto& one : cases) {
        for (const bool before : {true, false}) {
            VLDefaults::setAppUserId("before");
            VLDefaults::setDebugMode(before);
            VLLogger::setShallLog(before);
            log_.clear();
            Velmora::initializeWithAppKey(one.name, one.configuration);

            EXPECT_EQ(VLDefaults::getDeveloperKey(), one.name);
            EXPECT_EQ(VLDefaults::getDebugMode(), one.debugMode) << one.name;
            EXPECT_EQ(VLDefaults::getAppUserId(), one.appUserId) << one.name;
            EXPECT_EQ(log_.lines(), one.debugMode ? Lines{"Velmora initialized successfully"} : Lines{})
                << one.name;
        }
    }
    Velmora::initializeWithAppKey("");
    EXPECT_EQ(VLDefaults::getDeveloperKey(), "");
    EXPECT_TRUE(VLDefaults::getDebugMode());
}

TEST(Configuration, UnsetIsNotOffAndANullTextIsAbsent) {
    VLConfiguration filled;
    EXPECT_EQ(filled.mDebugMode(), std::nullopt);
    EXPECT_FALSE(filled.isDebugMode());
    EXPECT_EQ(filled.appUserId(), std::nullopt);

    filled.setDebugMode(false);
    EXPECT_EQ(filled.mDebugMode(), false);
    filled.setMDebugMode(true);
    EXPECT_TRUE(filled.isDebugMode());

    const char* const none = nullptr;
    filled.setAppUserId("user");
    EXPECT_EQ(filled.mAppUserId(), "user");
    filled.setMAppUserId(none);
    EXPECT_EQ(filled.appUserId(), std::nullopt);
    filled.setMAppUserId(std::string("other"));
    EXPECT_EQ(filled.appUserId(), "other");
    filled.setAppUserId(none);
    EXPECT_EQ(filled.mAppUserId(), std::nullopt);
}

TEST_F(Facade, WithoutAKeyNothingIsStored) {
    Velmora::initializeWithAppKey("before", configuration(true, "user"));
    log_.clear();
    const char* const noKey = nullptr;
    Velmora::initializeWithAppKey(noKey);
    Velmora::initializeWithAppKey(std::nullopt);
    Velmora::initializeWithAppKey(noKey, configuration(false, "other"));
    Velmora::initializeWithAppKey(std::nullopt, configuration(false, "other"));

    EXPECT_EQ(log_.lines(), Lines(4, "AppKey passed for initialization is null"));
    EXPECT_EQ(VLDefaults::getDeveloperKey(), "before");
    EXPECT_EQ(VLDefaults::getAppUserId(), "user");
    EXPECT_TRUE(Velmora::isDebugMode());
}

TEST_F(Facade, SettingTheDebugModeLeavesTheLoggingOfThisProcessAsItIs) {
    for (const bool logs : {true, false}) {
        Velmora::initializeWithAppKey("key", configuration(logs, std::nullopt));
        log_.clear();
        Velmora::setDebugMode(!logs);
        VLLog("line");

        EXPECT_EQ(Velmora::isDebugMode(), !logs);
        EXPECT_EQ(log_.lines(), logs ? Lines{"line"} : Lines{});
    }
}

TEST(FacadeInAFreshProcess, LoggingIsAsTheStoreHasItUntilTheEnd) {
    for (const bool isStored : {true, false}) {
        const TemporaryDirectory data;
        std::vector<std::string> words{VELMORA_LOGGER};
        if (isStored) words.emplace_back("on");
        const auto ended = runProgram(words, {{"XDG_DATA_HOME", data.path()}});
        for (const char* line : {"first\n", "second\n"})
            EXPECT_EQ(ended.errors.find(line) != std::string::npos, isStored) << ended.errors;
        EXPECT_EQ(ended.output, isStored ? "off" : "on");
    }
}

TEST_F(Facade, ARequestWithoutAllCallbacksIsDroppedForTheFirstThatIsMissing) {
    const char* const messages[]{"Nil block passed for onAdAvailable", "Nil block passed for onNoAdAvailable",
                                 "Nil block passed for onError", "Nil block passed for onExpiring"};
    const auto called = [](const auto&...) { ADD_FAILURE() << "an incomplete request was made"; };
    for (unsigned missing = 1; missing < 16; ++missing) {
        log_.clear();
        Velmora::requestAdForZone("", missing & 1U ? nullptr : OnAdAvailable(called),
                                  missing & 2U ? nullptr : OnNoAdAvailable(called),
                                  missing & 4U ? nullptr : OnError(called),
                                  missing & 8U ? nullptr : OnExpiring(called));
        EXPECT_EQ(log_.lines(), Lines{messages[std::countr_zero(missing)]}) << missing;
    }
    VLLogger::setShallLog(false);
    log_.clear();
    Velmora::requestAdForZone(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_TRUE(log_.empty());
}

TEST_F(Facade, TheEndOfAShowingIsToldToTheCallbackThatWasSetLast) {
    const auto tell = [](const auto& shown, bool completed) {
        VelmoraManager::onAdShowFinished(shown, completed);
        EXPECT_EQ(Velmora::runWaiting(), 1U);
    };
    Velmora::runWaiting();
    Velmora::setAdShowFinishedCallback(nullptr);
    const auto ad = std::make_shared<VelmoraAd>();
    tell(ad, true);

    Lines told;
    Velmora::setAdShowFinishedCallback([&](const auto&, bool) { told.emplace_back("replaced"); });
    Velmora::setAdShowFinishedCallback([&](const auto& shown, bool completed) {
        EXPECT_EQ(shown, ad);
        told.emplace_back(completed ? "completed" : "left");
    });
    tell(ad, true);
    tell(ad, false);
    Velmora::setAdShowFinishedCallback([](const auto&, bool) { throw 7; });
    tell(ad, true);
    EXPECT_TRUE(log_.has("An exception left the ad-show-finished callback"));
    Velmora::setAdShowFinishedCallback(nullptr);
    tell(ad, true);
    EXPECT_EQ(told, (Lines{"completed", "left"}));
}

TEST_F(Facade, AShowFinishedCallbackMayReplaceItselfAndCallTheLibraryWhenItGoes) {
    int calls = 0;
    Velmora::runWaiting();
    auto held =
        std::shared_ptr<void>(nullptr, [](void*) { VelmoraManager::onAdShowFinished(nullptr, true); });
    Velmora::setAdShowFinishedCallback([held = std::move(held)](const auto&, bool) {});
    Velmora::setAdShowFinishedCallback([&calls](const auto&, bool) {
        ++calls;
        Velmora::setAdShowFinishedCallback([&calls](const auto&, bool) { calls += 10; });
    });
    Velmora::runWaiting();
    EXPECT_EQ(calls, 1);
    VelmoraManager::onAdShowFinished(nullptr, true);
    Velmora::runWaiting();
    EXPECT_EQ(calls, 11);
    Velmora::setAdShowFinishedCallback(nullptr);
}

TEST_F(Facade, ThreadsMayInitialiseItAtOnceAndNobodySeesHalfOfIt) {
    Velmora::initializeWithAppKey("-0", configuration(true, "-0"));
    const auto shared = configuration(true, "-0");
    std::atomic<int> looks = 0;
    const auto use = [&](int thread) {
        const auto name = "-" + std::to_string(thread);
        for (int round = 0; round < 15 || looks < 200; ++round) {
            Velmora::initializeWithAppKey(name, configuration(thread % 2 == 0, name));
            shared->setDebugMode(thread % 2 == 0);
            shared->setAppUserId(name);
            EXPECT_EQ(shared->appUserId()->size(), name.size());
            Velmora::setAdShowFinishedCallback([name](const auto&, bool) { EXPECT_EQ(name.size(), 2U); });
            VelmoraManager::onAdShowFinished(nullptr, true);
            VLLog("%@", name);
        }
    };
    // What another program sees at one moment: key, user and debug mode are of one call.
    const auto look = [&] {
        for (; looks < 200; ++looks) {
            const auto seen = store_.rows(
                "SELECT value FROM defaults WHERE key IN ('developerKey', 'appUserId', 'debugMode') "
                "ORDER BY value");
            EXPECT_EQ(seen.size(), 3U);
            EXPECT_EQ(seen.at(0), seen.at(1));
            EXPECT_EQ(seen.at(2), (seen.at(0).at(2) - '0') % 2 == 0 ? "true" : "false");
        }
    };
    {
        const Threads threads(5, [&](int thread) {
            if (thread == 4) return look();
            use(thread);
        });
    }
    Velmora::setAdShowFinishedCallback(nullptr);
}

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
