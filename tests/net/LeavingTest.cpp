#include "harness/Await.h"
#include "sandbox/ScriptedServer.h"
#include "support/Program.h"

#include <algorithm>
#include <chrono>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

using sandbox::Script;
using sandbox::ScriptedServer;
using sandbox::SeenRequest;

constexpr int kRounds = 10;

/// The thread sanitizer lets a second pass before it lets a process end.
#ifdef __SANITIZE_THREAD__
constexpr std::chrono::seconds kPauseOfSanitizer{1};
#else
constexpr std::chrono::seconds kPauseOfSanitizer{0};
#endif

/// Ends well, and long before anything in it times out. How long it took.
std::chrono::steady_clock::duration runLeaver(const std::vector<std::string>& arguments) {
    std::vector<std::string> words(1);
    words.front().assign(VELMORA_LEAVER);
    words.insert(words.end(), arguments.begin(), arguments.end());
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(runProgram(words).status, 0);
    const auto took = std::chrono::steady_clock::now() - start;
    EXPECT_LT(took, std::chrono::seconds(20));
    return took;
}

TEST(Leaving, AProgramThatLeavesMainWithTransfersInFlightEndsAtOnceAndWell) {
    const ScriptedServer server([](const SeenRequest&) {
        return Script{.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345", .hang = true};
    });
    auto fastest = std::chrono::steady_clock::duration::max();
    for (int round = 0; round < kRounds; ++round) fastest = std::min(fastest, runLeaver({server.url("/")}));
    // Nothing is waited for that goes by itself.
    EXPECT_LT(fastest, kPauseOfSanitizer + std::chrono::seconds(1));
}

TEST(Leaving, TransfersThatStartDuringTheExitWorkOfAnApplicationAreWholeAndLaterOnesAreNot) {
    for (int round = 0; round < kRounds; ++round) {
        Await<bool> left;
        const ScriptedServer server([&](const SeenRequest& request) {
            if (request.target == "/left") left.add(true);
            const bool mustWait = request.target == "/";
            EXPECT_TRUE(!mustWait || left.count(1));
            return Script::answer(200, "x");
        });
        auto tell = server.url("/left");
        // Another host, so that it does not wait behind the rest.
        tell.replace(tell.find("127.0.0.1"), 9, "localhost");
        runLeaver({server.url("/"), tell});

        const auto seen = server.seen();
        EXPECT_EQ(seen.size(), 42U);
        for (const auto& request : seen) {
            EXPECT_EQ(request.headers.at("user-agent"), "velmora-leaver-with-a-long-name/0");
        }
    }
}

}  // namespace

}  // namespace velmora::test
