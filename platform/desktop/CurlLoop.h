#pragma once

#include "platform/Mutex.h"
#include "platform/SerialQueue.h"
#include "platform/desktop/CurlTransfer.h"

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <curl/curl.h>

namespace velmora::platform {

/// The one thread that runs libcurl: it takes transfers in, keeps at most so many of a host in flight, and
/// hands what has ended to the delegate queue.
class CurlLoop {
public:
    /// Lives as long as the process.
    CurlLoop();
    CurlLoop(const CurlLoop&) = delete;
    CurlLoop& operator=(const CurlLoop&) = delete;

    /// Starts a transfer, or ends it when it was cancelled meanwhile. Any thread.
    void submit(std::shared_ptr<CurlTransfer> transfer);

    /// Gives work to the delegate queue at the end of this turn of the loop; once the process leaves, drops
    /// it.
    void deliver(std::function<void()> work);

    /// Ends the thread and the queue, for the end of the process. Nothing is completed any more.
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

    void run();
    void turn();
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
    SerialQueue delegateQueue_;

    Mutex mutex_;
    std::vector<Transfer> submitted_ VELMORA_GUARDED_BY(mutex_);
    std::atomic<bool> maySleep_ = false;
    std::atomic<bool> leaving_ = false;

    /// The loop's own.
    std::map<std::string, Host> hosts_;
    std::map<CURL*, Flight> flights_;
    /// Handles of ended transfers: making one costs more than most small exchanges (bench-network).
    std::vector<CurlHandle> spare_;
    /// Whether a transfer waits for its first turn.
    bool startedAny_ = false;
    /// What ended in this turn, for the delegate queue.
    std::vector<std::function<void()>> ended_;
    std::thread thread_;
};

}  // namespace velmora::platform
