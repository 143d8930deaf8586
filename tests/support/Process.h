#pragma once

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmora::test {

/// A process of its own, forked before this one has threads. It counts as failed when an expectation in it
/// fails and when an exception leaves it.
class Process {
public:
    explicit Process(const std::function<void()>& body) : id_(::fork()) {
        if (id_ != 0) return;
        // Else it would outlive a test that dies, and keep the output open for whoever waits for its end.
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent_) ::_exit(EXIT_FAILURE);
        [&]() noexcept { body(); }();
        std::fflush(stdout);
        ::_exit(testing::Test::HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS);
    }

    ~Process() {
        if (id_ > 0) kill();
    }

    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    void kill() {
        ::kill(id_, SIGKILL);
        wait();
    }

    /// Whether it came to its end without a failure.
    bool succeeded() {
        const int status = wait();
        return WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
    }

private:
    int wait() {
        int status = -1;
        ::waitpid(id_, &status, 0);
        id_ = -1;
        return status;
    }

    const pid_t parent_ = ::getpid();
    pid_t id_;
};

/// Numbers from one process to another.
class Pipe {
public:
    Pipe() { EXPECT_EQ(::pipe(ends_.data()), 0); }

    ~Pipe() {
        closeWriting();
        ::close(ends_[0]);
    }

    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    void write(int number) { EXPECT_EQ(::write(ends_[1], &number, sizeof number), ssize_t{sizeof number}); }

    /// Absent when every process that could write has closed its end.
    std::optional<int> read() {
        int number = 0;
        return ::read(ends_[0], &number, sizeof number) == sizeof number ? std::optional(number)
                                                                         : std::nullopt;
    }

    void closeWriting() {
        if (ends_[1] >= 0) ::close(ends_[1]);
        ends_[1] = -1;
    }

private:
    std::array<int, 2> ends_{};
};

}  // namespace velmora::test
