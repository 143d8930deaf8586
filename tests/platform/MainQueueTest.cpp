#include "platform/MainQueue.h"

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

namespace velmora::test {

namespace {

using namespace std::chrono_literals;

using platform::MainQueue;
using testing::ElementsAre;
using testing::IsEmpty;

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

TEST(MainQueue, WorkWaitsForAnApplicationAndItsLoopAndKeepsItsOrder) {
    Ran ran;
    MainQueue::async([&] {
        // What is given while work runs comes last.
        MainQueue::async(ran.work(4));
        ran.numbers.push_back(1);
    });
    MainQueue::async(ran.work(2));
    Application application;
    MainQueue::async(ran.work(3));
    EXPECT_THAT(ran.numbers, IsEmpty());

    EXPECT_TRUE(application.runUntil(ran.count(4)));
    EXPECT_THAT(ran.numbers, ElementsAre(1, 2, 3, 4));
}

TEST(MainQueue, WorkOfEveryThreadRunsOnTheMainOneInTheOrderOfItsThread) {
    constexpr int kThreads = 4;
    constexpr int kPieces = 250;
    std::vector<std::vector<int>> ran(kThreads);
    int total = 0;
    const auto main = std::this_thread::get_id();
    // Some of the work comes before the application does.
    const Threads threads(kThreads, [&](int thread) {
        for (int i = 0; i < kPieces; ++i) {
            MainQueue::async([&, thread, i] {
                EXPECT_EQ(std::this_thread::get_id(), main);
                ran[static_cast<std::size_t>(thread)].push_back(i);
                ++total;
            });
        }
    });
    Application application;
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
