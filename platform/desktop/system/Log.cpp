#include "platform/Log.h"

#include "platform/Immortal.h"
#include "platform/Mutex.h"

#include <array>
#include <chrono>
#include <ctime>
#include <memory>
#include <string>

#include <errno.h>
#include <signal.h>
#include <unistd.h>

namespace velmora::platform {

namespace {

struct Sink {
    Mutex mutex;
    std::shared_ptr<const LogSink> function VELMORA_GUARDED_BY(mutex);
};

Sink& sink() {
    static Immortal<Sink> instance;
    return *instance;
}

std::string prefix() {
    const auto now = std::chrono::system_clock::now();
    const auto seconds = std::chrono::system_clock::to_time_t(now);
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
    std::tm local{};
    localtime_r(&seconds, &local);
    std::array<char, 32> date{};
    const auto dateLength = std::strftime(date.data(), date.size(), "%Y-%m-%d %H:%M:%S", &local);
    const auto fraction = std::to_string(1000 + milliseconds);

    std::string text(date.data(), dateLength);
    text.append(1, '.').append(fraction, 1).append(1, ' ').append(program_invocation_short_name);
    text.append(1, '[').append(std::to_string(getpid())).append("] ");
    return text;
}

/// Keeps this thread from being told that standard error is a pipe which nobody reads: that would end the
/// host.
class WithoutBrokenPipe {
public:
    WithoutBrokenPipe() {
        sigemptyset(&pipe_);
        sigaddset(&pipe_, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        wasPending_ = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &pipe_, &before_);
    }
    ~WithoutBrokenPipe() {
        constexpr timespec now{};
        if (!wasPending_) sigtimedwait(&pipe_, nullptr, &now);
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }
    WithoutBrokenPipe(const WithoutBrokenPipe&) = delete;
    WithoutBrokenPipe& operator=(const WithoutBrokenPipe&) = delete;

private:
    sigset_t pipe_;
    sigset_t before_;
    bool wasPending_;
};

void writeToStandardError(std::string_view message) {
    auto line = prefix();
    line.append(message).append(1, '\n');
    const WithoutBrokenPipe guard;
    // One write, so that lines of several threads and processes do not mix. A short or failed one is not
    // repeated.
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, line.data(), line.size());
}

}  // namespace

void log(std::string_view message) noexcept {
    try {
        std::shared_ptr<const LogSink> function;
        {
            const MutexLock lock(sink().mutex);
            function = sink().function;
        }
        if (function) return (*function)(message);
        writeToStandardError(message);
    } catch (...) {
        // Logging has nobody to tell.
    }
}

LogSink setLogSink(LogSink next) {
    auto shared = next ? std::make_shared<const LogSink>(std::move(next)) : nullptr;
    {
        const MutexLock lock(sink().mutex);
        shared.swap(sink().function);
    }
    return shared ? *shared : LogSink();
}

}  // namespace velmora::platform
