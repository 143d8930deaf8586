#pragma once

#include "platform/Mutex.h"
#include "platform/desktop/CurlTransfer.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <curl/curl.h>

namespace velmora::platform {

/// Runs libcurl, keeps at most so many transfers of a host in flight, and completes them one at a time, in
/// the order in which they ended.
///
/// Two threads share the two roles. One that has received an answer runs its completion itself and leaves the
/// receiving to the other, which need not be woken when nothing else is in flight: waking a thread takes
/// about as long as a small exchange over loopback (bench-network).
class CurlLoop {
public:
    /// Lives as long as the process.
    CurlLoop();
    CurlLoop(const CurlLoop&) = delete;
    CurlLoop& operator=(const CurlLoop&) = delete;

    /// Starts a transfer, or ends it when it was cancelled meanwhile. Any thread.
    ///
    /// Where the machine has no thread left to start, the transfer ends in an error, and its completion runs
    /// on the calling thread.
    void submit(std::shared_ptr<CurlTransfer> transfer);

    /// A transfer is being put together: a thread wakes meanwhile, because that takes about as long. Any
    /// thread.
    void expect();

    /// Has `work` run where completions run; once the process leaves, drops it.
    void deliver(std::function<void()> work);

    /// Ends both roles, for the end of the process; a completion that takes too long goes on alone. Nothing
    /// is completed any more.
    void leave();

    std::atomic<std::chrono::milliseconds> idleTimeout;

private:
    using Transfer = std::shared_ptr<CurlTransfer>;

    /// The transfers of one host.
    struct Host {
        std::size_t inFlight = 0;
        std::deque<Transfer> waiting;
    };

    struct Flight {
        Transfer transfer;
        std::string host;
    };

    /// False when there is none. A second one that cannot start is tried again the next time.
    [[nodiscard]] bool startThreads() VELMORA_REQUIRES(mutex_);
    void work();
    [[nodiscard]] bool mustReceive() const VELMORA_REQUIRES(mutex_);
    /// Does `what` in the role of the thread that receives.
    void receive(void (CurlLoop::*what)()) VELMORA_REQUIRES(mutex_);
    void complete() VELMORA_REQUIRES(mutex_);

    /// Waits a moment for what is expected, without sleeping.
    void linger();
    void turn();
    [[nodiscard]] bool mayHoldBack() const;
    void takeIn();
    void takeIn(Transfer transfer);
    void startWaiting(const std::string& host);
    [[nodiscard]] CurlHandle freshHandle();
    void endDone();
    void endIdle();
    void sleep();
    /// Takes a transfer out of flight and ends it with a result of libcurl's, or with an error of ours.
    template <class Result>
    void land(CURL* handle, Result result);

    CURLM* const multi_;
    CURLSH* const share_;

    mutable Mutex mutex_;
    std::condition_variable_any changed_;
    std::vector<Transfer> submitted_ VELMORA_GUARDED_BY(mutex_);
    std::deque<std::function<void()>> ended_ VELMORA_GUARDED_BY(mutex_);
    std::vector<std::thread::id> threads_ VELMORA_GUARDED_BY(mutex_);
    bool receiving_ VELMORA_GUARDED_BY(mutex_) = false;
    bool anyInFlight_ VELMORA_GUARDED_BY(mutex_) = false;
    bool expecting_ VELMORA_GUARDED_BY(mutex_) = false;
    std::chrono::steady_clock::time_point warmUntil_ VELMORA_GUARDED_BY(mutex_);
    std::optional<std::thread::id> completing_ VELMORA_GUARDED_BY(mutex_);
    std::atomic<bool> anySubmitted_ = false;
    std::atomic<bool> maySleep_ = false;
    std::atomic<bool> leaving_ = false;

    /// Of the thread that receives.
    std::map<std::string, Host> hosts_;
    std::map<CURL*, Flight> flights_;
    /// Handles of ended transfers: making one costs more than most small exchanges (bench-network).
    std::vector<CurlHandle> spare_;
    /// Whether a transfer waits for its first turn.
    bool startedAny_ = false;
    bool landedAny_ = false;
};

}  // namespace velmora::platform
