#include "platform/Log.h"

#include "support/LogCapture.h"
#include "support/Threads.h"

#include <array>
#include <stdexcept>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

namespace velmora::test {

namespace {

using platform::log;
using platform::setLogSink;
using testing::ElementsAre;
using testing::EndsWith;
using testing::MatchesRegex;

/// Stands for standard error while it lives, and keeps the bytes of each write apart.
class StandardError {
public:
    StandardError() : before_(::dup(STDERR_FILENO)) {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe2(ends.data(), O_DIRECT), 0);
        ::dup2(ends[1], STDERR_FILENO);
        ::close(ends[1]);
        reading_ = ends[0];
    }

    ~StandardError() {
        restore();
        ::close(reading_);
    }

    StandardError(const StandardError&) = delete;
    StandardError& operator=(const StandardError&) = delete;

    /// Ends the writing; every `nextWrite` after the last is empty.
    void restore() {
        if (before_ >= 0) {
            ::dup2(before_, STDERR_FILENO);
            ::close(before_);
        }
        before_ = -1;
    }

    std::string nextWrite() {
        std::array<char, 4096> bytes{};
        const auto size = ::read(reading_, bytes.data(), bytes.size());
        return {bytes.data(), size > 0 ? static_cast<std::size_t>(size) : 0};
    }

private:
    int before_;
    int reading_ = -1;
};

TEST(Log, ALineHasTheTimeTheProcessAndTheMessage) {
    StandardError standardError;
    log("the message");
    EXPECT_THAT(standardError.nextWrite(),
                MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} " +
                             std::string(program_invocation_short_name) + "\\[" + std::to_string(::getpid()) +
                             "\\] the message\n"));
}

TEST(Log, LinesOfSeveralThreadsDoNotMix) {
    constexpr int kThreads = 4;
    constexpr int kLines = 100;
    StandardError standardError;
    std::array<int, kThreads> counts{};
    {
        const Threads threads(kThreads, [](int thread) {
            for (int i = 0; i < kLines; ++i) log(std::string(3000, static_cast<char>('a' + thread)));
        });
        for (int i = 0; i < kThreads * kLines; ++i) {
            const auto line = standardError.nextWrite();
            ASSERT_GT(line.size(), 3001U);
            const char letter = line[line.size() - 2];
            EXPECT_THAT(line, EndsWith("] " + std::string(3000, letter) + "\n"));
            ++counts.at(static_cast<std::size_t>(letter - 'a'));
        }
    }
    standardError.restore();
    EXPECT_EQ(standardError.nextWrite(), "");
    EXPECT_THAT(counts, testing::Each(kLines));
}

TEST(Log, ASinkTakesTheMessagesUntilTheOneBeforeIsRestored) {
    std::vector<std::string> outer;
    std::vector<std::string> inner;
    auto first = setLogSink([&](std::string_view message) { outer.emplace_back(message); });
    log("one");
    auto second = setLogSink([&](std::string_view message) {
        inner.emplace_back(message);
        // What logs while it logs, or changes the sink, must not wait for itself.
        if (message == "two") {
            log("three");
            setLogSink(setLogSink({}));
        }
    });
    log("two");
    EXPECT_TRUE(setLogSink(std::move(second)));
    log("four");
    StandardError standardError;
    EXPECT_TRUE(setLogSink(std::move(first)));
    log("five");

    EXPECT_THAT(outer, ElementsAre("one", "four"));
    EXPECT_THAT(inner, ElementsAre("two", "three"));
    EXPECT_THAT(standardError.nextWrite(), EndsWith("] five\n"));
}

TEST(Log, AMessageThatCannotBeLoggedIsDropped) {
    {
        const LogCapture restoring;
        setLogSink([](std::string_view) { throw std::runtime_error("the sink is broken"); });
        log("lost");
    }
    const int before = ::dup(STDERR_FILENO);
    ::close(STDERR_FILENO);
    log("lost");
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    ::dup2(pipe[1], STDERR_FILENO);
    ::close(pipe[0]);
    ::close(pipe[1]);
    log("lost in a pipe that nobody reads, which would end a process that is told of it");
    ::dup2(before, STDERR_FILENO);
    ::close(before);

    StandardError standardError;
    log("kept");
    EXPECT_THAT(standardError.nextWrite(), EndsWith("] kept\n"));
}

}  // namespace

}  // namespace velmora::test
