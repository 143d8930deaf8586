#include "core/VelmoraManager.h"
#include "harness/Await.h"
#include "log/VLLog.h"
#include "model/AtomicProperty.h"
#include "sandbox/Sandbox.h"
#include "sandbox/ScriptedServer.h"
#include "support/ApplicationStore.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/Program.h"

#include <velmora/velmora.h>

#include <atomic>
#include <chrono>
#include <thread>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using namespace std::chrono_literals;
using sandbox::Script;
using sandbox::ScriptedServer;
using sandbox::SeenRequest;
using testing::ElementsAre;
using testing::IsEmpty;
using Clock = std::chrono::steady_clock;

constexpr const char* kStreamed =
    R"({"suggestions": [{"suggestionId": "a", "expirationTimeInMillis": 1000,
        "creative": {"ctaType": 3, "action": {"type": 1}, "ctaUrl": "u"}}]})";

class ShutDown : public testing::Test {
protected:
    ShutDown() {
        ::setenv("VELMORA_API_BASE_URL", server_.url("/v2").c_str(), 1);
        Velmora::initializeWithAppKey("key");
    }

    /// What the callbacks of a request hear; they hold `held_`.
    void request(std::function<void()> onAdAvailable = {}) {
        const auto note = [this, held = held_](const std::string& what) { heard_.add(what); };
        Velmora::requestAdForZone(
            "zone",
            [note, onAdAvailable](const auto&) {
                note("available");
                if (onAdAvailable) onAdAvailable();
            },
            [note] { note("none"); }, [note](const std::string&) { note("error"); },
            [note](const auto&) { note("expiring"); });
    }

    /// Nothing of the application is in the library's hands, and nobody is called from here on.
    void expectNothingLeft() {
        EXPECT_EQ(held_.use_count(), 1);
        const auto before = heard_.values();
        answer_.set(Script::answer(200, kStreamed));
        clock_->advance(24h);
        Velmora::runWaiting();
        std::this_thread::sleep_for(50ms);
        EXPECT_EQ(heard_.values(), before);
    }

    ApplicationStore store_;
    UseManualClock clock_;
    LogCapture log_;
    Await<std::string> heard_;
    std::shared_ptr<int> held_ = std::make_shared<int>();
    AtomicProperty<Script> answer_{Script::answer(200, kStreamed)};
    ScriptedServer server_{[this](const SeenRequest& request) {
        return request.target == "/v2/suggestions/" ? answer_.get() : Script::answer(200, "");
    }};
};

TEST_F(ShutDown, WithEverythingInFlightNothingIsCalledAnyMoreAndNothingIsHeld) {
    Velmora::setAdShowFinishedCallback([held = held_](const auto&, bool) {});
    Velmora::setMainQueue([held = held_](const auto&) {});
    request();
    ASSERT_TRUE(becomes([&] { return clock_->waiting() == 1; }));
    answer_.set({.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345", .hang = true});
    for (int number = 0; number < 20; ++number) request();
    VelmoraManager::onAdShowFinished(nullptr, true);
    clock_->advance(1s);

    const auto start = Clock::now();
    Velmora::shutDown();
    EXPECT_LT(Clock::now() - start, 900ms);
    expectNothingLeft();
    EXPECT_THAT(heard_.values(), ElementsAre("available"));
    EXPECT_EQ(store_.states(), "a=2");

    Velmora::initializeWithAppKey("key");
    request();
    ASSERT_TRUE(becomes([&] { return clock_->waiting() == 1; }));
    clock_->advance(1s);
    while (Velmora::runWaiting() == 0) continue;
    EXPECT_THAT(heard_.values(), ElementsAre("available", "available", "expiring"));
}

TEST_F(ShutDown, FromInsideACallbackItDoesNotWaitForThatOne) {
    Await<Clock::duration> took;
    request([&] {
        const auto start = Clock::now();
        Velmora::shutDown();
        Velmora::shutDown();
        took.add(Clock::now() - start);
    });
    ASSERT_TRUE(took.count(1));
    EXPECT_LT(took.values().front(), 900ms);
    // Its own functions go when it has returned.
    EXPECT_TRUE(becomes([&] { return held_.use_count() == 1; }));
    expectNothingLeft();
}

TEST_F(ShutDown, ACallbackOnAnotherThreadIsWaitedForForASecondAtMost) {
    for (const bool ends : {true, false}) {
        SCOPED_TRACE(ends);
        Velmora::initializeWithAppKey("key");
        struct Callback {
            Await<bool> begun;
            Await<bool> mayEnd;
            std::atomic<bool> hasEnded = false;
        };
        const auto callback = std::make_shared<Callback>();
        request([callback] {
            callback->begun.add(true);
            EXPECT_TRUE(callback->mayEnd.count(1));
            callback->hasEnded = true;
        });
        ASSERT_TRUE(callback->begun.count(1));
        std::thread other([&] {
            std::this_thread::sleep_for(ends ? 100ms : 1500ms);
            callback->mayEnd.add(true);
        });
        Velmora::shutDown();
        EXPECT_EQ(callback->hasEnded, ends);
        other.join();
        EXPECT_TRUE(becomes([&] { return held_.use_count() == 1; }));
    }
}

TEST_F(ShutDown, WhoeverRunsTheMainQueueHearsOfWhatWaitsThere) {
    request();
    ASSERT_TRUE(becomes([&] { return clock_->waiting() == 1; }));
    // This thread is the one from here on.
    Velmora::runWaiting();
    VelmoraManager::onAdShowFinished(nullptr, true);
    while (Velmora::runWaiting() == 0) continue;
    clock_->advance(1s);
    Velmora::shutDown();
    EXPECT_THAT(heard_.values(), ElementsAre("available", "expiring"));
}

TEST_F(ShutDown, WhatIsAskedForAfterwardsIsDroppedWithALine) {
    Velmora::shutDown();
    VLLogger::setShallLog(true);
    request();
    std::make_shared<VelmoraAd>()->showWithOptions(nullptr);
    EXPECT_TRUE(log_.has("The library is shut down: no ad is requested"));
    EXPECT_TRUE(log_.has("The library is shut down: no ad is shown"));
    EXPECT_THAT(server_.seen(), IsEmpty());
    expectNothingLeft();
}

TEST_F(ShutDown, APluginThatIsClosedAfterItLeavesNothingBehind) {
    answer_.set({.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345", .hang = true});
    const TemporaryDirectory data;
    const auto ended =
        runProgram({VELMORA_PLUGIN_HOST, VELMORA_PLUGIN}, {{"XDG_DATA_HOME", data.path().string()}});
    EXPECT_EQ(ended.status, 0) << ended.errors;
}

TEST(Console, AProgramWithoutAToolkitHearsOfItsAdAndOfTheEndOfItsTime) {
    const sandbox::Sandbox service({.expiringAfter = 100ms});
    const TemporaryDirectory data;
    const auto ended = runProgram({VELMORA_CONSOLE}, {{"XDG_DATA_HOME", data.path().string()},
                                                      {"VELMORA_API_BASE_URL", service.plainApiUrl()}});
    EXPECT_EQ(ended.status, 0) << ended.errors;
    EXPECT_EQ(ended.output, "available\nexpiring\n");
    EXPECT_THAT(ended.errors, testing::HasSubstr("Callbacks come on a thread of the library's"));
}

TEST(ShutDownAlone, BeforeAnyInitialisationDoesNothing) {
    Velmora::shutDown();
    Velmora::shutDown();
    EXPECT_EQ(Velmora::runWaiting(), 0U);
}

}  // namespace

}  // namespace velmora::test
