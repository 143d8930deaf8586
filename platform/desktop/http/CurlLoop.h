#pragma once

#include "platform/Mutex.h"
#include "platform/desktop/http/CurlTransfer.h"
#include "platform/desktop/system/SerialQueue.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <curl/curl.h>

namespace velmora::platform {

/// Runs libcurl, and nothing else, on a thread of its own, with at most so many transfers of a host in
/// flight. What ends is completed on the delegate queue, in the order in which it ended.
class CurlLoop {
public:
    using Transfer = std::shared_ptr<CurlTransfer>;

    /// Lives as long as the process.
    CurlLoop();
    ~CurlLoop() = default;
    CurlLoop(const CurlLoop&) = delete;
    CurlLoop& operator=(const CurlLoop&) = delete;

    /// Starts a transfer, or ends it when it was cancelled meanwhile. Any thread.
    ///
    /// Where the machine has no thread left to start, the transfer ends in an error.
    void submit(const Transfer& transfer);

    /// Cancels what was submitted until now, the reports excepted. Any thread.
    void cancelAll();

    /// For the end of the process: ends the loop and the queue, and waits for both a second in all. What does
    /// not end in time goes on alone. Nothing is completed any more.
    void leave();

    SerialQueue delegateQueue;
    std::atomic<std::chrono::milliseconds> idleTimeout;

private:
    /// The transfers of one host.
    struct Host {
        std::size_t inFlight = 0;
        std::deque<Transfer> waiting;
    };

    struct Flight {
        Transfer transfer;
        std::string host;
    };

    [[nodiscard]] bool startThread() VELMORA_REQUIRES(mutex_);
    void run();

    void handleSubmitted();
    void queueForItsHost(const Transfer& transfer);
    void cancel(const Transfer& transfer);
    void cancelAllButReports();
    void startWaiting(const std::string& host);
    [[nodiscard]] bool start(const Transfer& transfer);
    void performTransfers();
    void endIdleTransfers();
    void waitForEvents();
    /// Out of flight: another one of its host may start.
    Transfer takeOut(CURL* handle);

    CURLM* const multi_;
    CURLSH* const share_;

    Mutex mutex_;
    std::condition_variable_any changed_;
    std::vector<Transfer> submitted_ VELMORA_GUARDED_BY(mutex_);
    bool mustCancelAll_ VELMORA_GUARDED_BY(mutex_) = false;
    bool isRunning_ VELMORA_GUARDED_BY(mutex_) = false;
    std::atomic<bool> leaving_ = false;

    /// Of the loop's thread.
    std::map<std::string, Host> hosts_;
    std::map<CURL*, Flight> flights_;
};

}  // namespace velmora::platform
