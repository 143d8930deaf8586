#include "support/ScriptedServer.h"

#include <chrono>
#include <cstdlib>

#include <sys/wait.h>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

TEST(Leaving, AProgramThatLeavesMainWithTransfersInFlightEndsAtOnceAndWell) {
    const ScriptedServer server([](const SeenRequest&) {
        return Script{.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345", .hang = true};
    });
    std::string command = VELMORA_LEAVER;
    command.append(" ").append(server.url("/"));
    for (int round = 0; round < 20; ++round) {
        const auto start = std::chrono::steady_clock::now();
        const int status = std::system(command.c_str());
        ASSERT_TRUE(WIFEXITED(status));
        ASSERT_EQ(WEXITSTATUS(status), 0);
        ASSERT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    }
}

}  // namespace

}  // namespace velmora::test
