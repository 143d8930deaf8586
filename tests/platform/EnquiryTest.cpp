#include "platform/desktop/bus/Enquiry.h"

#include "platform/Immortal.h"
#include "support/LogCapture.h"
#include "support/Threads.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <latch>
#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

using namespace std::chrono_literals;
using platform::Enquiry;
using platform::Immortal;

/// Asked until there is an answer.
std::optional<int> answerInTheEnd(Enquiry<int>& enquiry) {
    std::optional<int> answer;
    for (int time = 0; time < 3000 && !answer; ++time) answer = enquiry.answer();
    return answer;
}

TEST(Enquiry, AFreshAnswerIsGivenAgain) {
    static std::atomic<int> asked = 0;
    static Immortal<Enquiry<int>> enquiry([] { return ++asked; });
    ASSERT_EQ(answerInTheEnd(*enquiry), 1);
    for (int time = 0; time < 5; ++time) EXPECT_EQ(enquiry->answer(), 1);
    EXPECT_EQ(asked, 1);
}

TEST(Enquiry, AQuestionThatTakesLongIsAskedOnceAndKeepsNobodyWaiting) {
    static std::atomic<int> asked = 0;
    static std::promise<int> answer;
    static Immortal<Enquiry<int>> enquiry([] {
        ++asked;
        return answer.get_future().get();
    });
    const auto start = std::chrono::steady_clock::now();
    {
        const Threads threads(4, [](int) {
            for (int time = 0; time < 50; ++time) EXPECT_EQ(enquiry->answer(), std::nullopt);
        });
    }
    // Two hundred times the patience of one are four seconds.
    EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
    EXPECT_EQ(asked, 1);
    answer.set_value(7);
    EXPECT_EQ(answerInTheEnd(*enquiry), 7);
}

TEST(Enquiry, WhoAsksWaitsForAMomentOnly) {
    // Held by the questions too: those still being asked outlive the test.
    const auto end = std::make_shared<std::latch>(1);
    auto least = std::chrono::steady_clock::duration::max();
    // Two of them may come together in the fifty milliseconds that a caller has. A busy machine lengthens
    // some, not all of so many.
    constexpr auto kShort = 25ms;
    for (int time = 0; time < 100 && least >= kShort; ++time) {
        Enquiry<int> enquiry([end] {
            end->wait();
            return 1;
        });
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(enquiry.answer(), std::nullopt);
        least = std::min(least, std::chrono::steady_clock::now() - start);
    }
    EXPECT_LT(least, kShort);
    end->count_down();
}

TEST(Enquiry, AQuestionThatFailsHasNoAnswerAndIsAskedAgain) {
    const LogCapture log;
    static std::atomic<int> asked = 0;
    static Immortal<Enquiry<int>> enquiry([] {
        if (++asked == 1) throw std::runtime_error("nobody knows");
        return asked.load();
    });
    EXPECT_EQ(answerInTheEnd(*enquiry), 2);
    EXPECT_TRUE(log.has("nobody knows"));
}

}  // namespace

}  // namespace velmora::test
