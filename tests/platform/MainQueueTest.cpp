#include "platform/MainQueue.h"

#include "harness/Await.h"
#include "platform/Clock.h"
#include "support/Application.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/Threads.h"

#include <chrono>
#include <numeric>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <poll.h>

namespace velmora::test {

namespace {

using namespace std::chrono_literals;

using platform::MainQueue;
using testing::ElementsAre;

/// What ran, by number, in its order.
class Ran {
public:
    MainQueue::Work work(int number) {
        return [this, number] { numbers.push_back(number); };
    }

    std::function<bool()> count(std::size_t count) {
        return [this, count] { return numbers.size() >= count; };
    }

    std::vector<int> numbers;
};

TEST(MainQueue, WithoutAWordOfTheApplicationWorkRunsOnOneThreadOfTheLibrary) {
    const LogCapture log;
    Await<std::thread::id> threads;
    for (int piece = 0; piece < 3; ++piece)
        MainQueue::async([&] { threads.add(std::this_thread::get_id()); });
    ASSERT_TRUE(threads.count(3));
    EXPECT_NE(threads.values().front(), std::this_thread::get_id());
    EXPECT_THAT(threads.values(), testing::Each(threads.values().front()));
    EXPECT_THAT(log.lines(), ElementsAre(testing::HasSubstr("Velmora::setMainQueue")));
}

TEST(MainQueue, AnApplicationsOwnLoopPollsTheDescriptorAndRunsWhatWaits) {
    Ran ran;
    const int descriptor = MainQueue::waitingDescriptor();
    const auto isReadable = [&](int milliseconds) {
        pollfd one{.fd = descriptor, .events = POLLIN, .revents = 0};
        return ::poll(&one, 1, milliseconds) == 1;
    };
    EXPECT_FALSE(isReadable(0));
    MainQueue::async([&] {
        // What is given while work runs has its turn the next time.
        MainQueue::async(ran.work(3));
        ran.numbers.push_back(1);
    });
    std::thread([&] { MainQueue::after(1ms, ran.work(2)); }).join();
    ASSERT_TRUE(isReadable(10'000));
    EXPECT_GE(MainQueue::runWaiting(), 1U);
    while (ran.numbers.size() < 3) {
        ASSERT_TRUE(isReadable(10'000));
        MainQueue::runWaiting();
    }
    EXPECT_THAT(ran.numbers, testing::UnorderedElementsAre(1, 2, 3));
    EXPECT_FALSE(isReadable(0));
    EXPECT_EQ(MainQueue::runWaiting(), 0U);
}

TEST(MainQueue, WhatWaitsGoesToTheFunctionThatIsSetLast) {
    Ran ran;
    std::vector<MainQueue::Work> first;
    std::vector<MainQueue::Work> second;
    const auto held = std::make_shared<int>();
    MainQueue::setRunner([&first, held](auto turn) { first.push_back(std::move(turn)); });
    for (const int number : {1, 2}) MainQueue::async(ran.work(number));
    first.front()();
    MainQueue::setRunner([&second](auto turn) { second.push_back(std::move(turn)); });
    EXPECT_EQ(held.use_count(), 1);
    MainQueue::async(ran.work(3));
    // Turns of the one before are worth nothing any more, and one turn runs one piece only.
    for (const auto& turn : first) turn();
    EXPECT_THAT(ran.numbers, ElementsAre(1));
    EXPECT_EQ(MainQueue::runWaiting(), 0U);
    for (const auto& turn : second) turn();
    second.front()();
    EXPECT_THAT(ran.numbers, ElementsAre(1, 2, 3));

    MainQueue::setRunner([](const auto&) { throw std::runtime_error("not now"); });
    MainQueue::async(ran.work(4));
    // The pump was chosen above, and has what no function took.
    MainQueue::setRunner({});
    EXPECT_EQ(MainQueue::runWaiting(), 1U);
}

TEST(MainQueue, AClosedOneDropsWhatWaitsAndWhatComes) {
    Ran ran;
    std::vector<MainQueue::Work> turns;
    const auto held = std::make_shared<int>();
    MainQueue::setRunner([&turns, held](auto turn) { turns.push_back(std::move(turn)); });
    MainQueue::async([&ran, held] { ran.numbers.push_back(1); });
    MainQueue::close();
    EXPECT_EQ(held.use_count(), 1);
    MainQueue::async(ran.work(2));
    MainQueue::open();
    for (const auto& turn : turns) turn();
    EXPECT_EQ(MainQueue::runWaiting(), 0U);
    MainQueue::async(ran.work(3));
    EXPECT_EQ(MainQueue::runWaiting(), 1U);
    EXPECT_THAT(ran.numbers, ElementsAre(3));
}

TEST(MainQueue, WhoeverRanItLastIsToldTheRestWhenItCloses) {
    Ran ran;
    MainQueue::runWaiting();
    MainQueue::async(ran.work(1));
    EXPECT_EQ(MainQueue::runWaiting(), 1U);
    MainQueue::async(ran.work(2));
    MainQueue::close();
    EXPECT_THAT(ran.numbers, ElementsAre(1, 2));
    MainQueue::open();
}

TEST(MainQueue, WorkOfEveryThreadRunsOnTheMainOneInTheOrderOfItsThread) {
    constexpr int kThreads = 4;
    constexpr int kPieces = 250;
    std::vector<std::vector<int>> ran(kThreads);
    int total = 0;
    const auto main = std::this_thread::get_id();
    Application application;
    const Threads threads(kThreads, [&](int thread) {
        for (int i = 0; i < kPieces; ++i) {
            MainQueue::async([&, thread, i] {
                EXPECT_EQ(std::this_thread::get_id(), main);
                ran[static_cast<std::size_t>(thread)].push_back(i);
                ++total;
            });
        }
    });
    EXPECT_TRUE(application.runUntil([&] { return total == kThreads * kPieces; }));

    std::vector<int> order(kPieces);
    std::iota(order.begin(), order.end(), 0);
    EXPECT_THAT(ran, testing::Each(order));
}

TEST(MainQueue, WorkThatThrowsIsLoggedAndTheRestRuns) {
    const LogCapture log;
    Application application;
    Ran ran;
    MainQueue::async([] { throw std::runtime_error("the reason"); });
    MainQueue::async([] { throw 1; });
    MainQueue::async({});
    MainQueue::async(ran.work(1));
    EXPECT_TRUE(application.runUntil(ran.count(1)));
    EXPECT_TRUE(log.has("the reason"));
    EXPECT_THAT(log.lines(), testing::SizeIs(2));
}

TEST(MainQueue, ALoopInsideOfWorkDoesNotHoldUpTheRest) {
    Application application;
    Ran ran;
    MainQueue::async([&] {
        EXPECT_TRUE(application.runUntil(ran.count(2)));
        ran.numbers.push_back(3);
    });
    MainQueue::async(ran.work(1));
    MainQueue::async(ran.work(2));
    MainQueue::after(1ms, ran.work(4));
    EXPECT_TRUE(application.runUntil(ran.count(4)));
    EXPECT_THAT(ran.numbers, testing::UnorderedElementsAre(1, 2, 3, 4));
    EXPECT_EQ(ran.numbers[0], 1);
}

TEST(MainQueue, WorkThatAnApplicationLeavesBehindIsForTheNext) {
    Ran ran;
    {
        Application first;
        MainQueue::async(ran.work(1));
        EXPECT_TRUE(first.runUntil(ran.count(1)));
        MainQueue::after(20ms, ran.work(4));
        // Has begun to wait when this has run.
        MainQueue::async(ran.work(2));
        EXPECT_TRUE(first.runUntil(ran.count(2)));
        MainQueue::async(ran.work(3));
    }
    Application second;
    EXPECT_TRUE(second.runUntil(ran.count(4)));
    EXPECT_THAT(ran.numbers, ElementsAre(1, 2, 3, 4));
}

TEST(Clock, TheRealOneKeepsWorkForAsLongAsItWasAsked) {
    Application application;
    Ran ran;
    const auto start = std::chrono::steady_clock::now();
    std::chrono::steady_clock::duration waited{};
    MainQueue::after(30ms, [&] {
        waited = std::chrono::steady_clock::now() - start;
        ran.numbers.push_back(4);
    });
    MainQueue::after(10ms, ran.work(3));
    MainQueue::after(0ms, ran.work(1));
    MainQueue::after(-5ms, ran.work(2));
    MainQueue::after(std::chrono::milliseconds::max(), ran.work(5));
    EXPECT_TRUE(application.runUntil(ran.count(4)));
    EXPECT_THAT(ran.numbers, ElementsAre(1, 2, 3, 4));
    EXPECT_GE(waited, 30ms);
}

TEST(Clock, NowIsRoundedToTheNearestMillisecond) {
    UseManualClock clock;
    const std::pair<std::chrono::nanoseconds, std::int64_t> cases[] = {
        {499us, 1'700'000'000'000},
        {2us, 1'700'000'000'001},
        {-1'700'000'000'002ms - 101us, -2},
    };
    for (const auto& [time, milliseconds] : cases) {
        clock->advance(time);
        EXPECT_EQ(platform::nowInMilliseconds(), milliseconds);
    }
}

}  // namespace

}  // namespace velmora::test
