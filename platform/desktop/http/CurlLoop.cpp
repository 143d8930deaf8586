#include "platform/desktop/http/CurlLoop.h"

#include "platform/CallOut.h"
#include "platform/UrlSession.h"
#include "platform/desktop/http/CurlTransfer.h"
#include "platform/desktop/system/DetachedThread.h"
#include "platform/desktop/system/Origin.h"

#include <algorithm>
#include <string>
#include <utility>

#include <unistd.h>

namespace velmora::platform {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kIdleTimeout{60'000};
constexpr std::chrono::milliseconds kLongestWait{std::chrono::hours(1)};
constexpr std::chrono::milliseconds kPatienceAtTheEnd{1000};
constexpr long kKeptConnections = 64;

CURLM* makeMulti() {
    warnOfForeign("libcurl", reinterpret_cast<const void*>(&curl_multi_init));
    curl_global_init(CURL_GLOBAL_DEFAULT);
    auto* multi = curl_multi_init();
    curl_multi_setopt(multi, CURLMOPT_MAXCONNECTS, kKeptConnections);
    return multi;
}

CURLSH* makeShare() {
    // Only the loop's thread uses it, so that it needs no locks.
    auto* share = curl_share_init();
    curl_share_setopt(share, CURLSHOPT_SHARE, CURL_LOCK_DATA_COOKIE);
    // Sessions would else live in the easy handle and end with it: each connection a full handshake.
    curl_share_setopt(share, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
    return share;
}

}  // namespace

CurlLoop::CurlLoop() : idleTimeout(kIdleTimeout), multi_(makeMulti()), share_(makeShare()) {}

void CurlLoop::submit(const Transfer& transfer) {
    bool isTaken = false;
    bool mustWake = false;
    {
        const MutexLock lock(mutex_);
        isTaken = startThread();
        // A wake-up costs a system call, which a burst of submissions needs once.
        mustWake = isTaken && submitted_.empty();
        if (isTaken) submitted_.push_back(transfer);
    }
    if (!isTaken) return transfer->endWithError(UrlError::unknown);
    if (mustWake) curl_multi_wakeup(multi_);
}

void CurlLoop::cancelAll() {
    std::vector<Transfer> submitted;
    {
        const MutexLock lock(mutex_);
        if (!isRunning_) return;
        mustCancelAll_ = true;
        submitted = submitted_;
    }
    for (const auto& transfer : submitted) {
        if (!transfer->isReport()) transfer->cancel();
    }
    curl_multi_wakeup(multi_);
}

void CurlLoop::leave() {
    const auto deadline = Clock::now() + kPatienceAtTheEnd;
    leaving_ = true;
    curl_multi_wakeup(multi_);
    {
        const MutexLock lock(mutex_);
        while (isRunning_ && changed_.wait_until(mutex_, deadline) == std::cv_status::no_timeout) continue;
    }
    delegateQueue.leave(deadline);
}

bool CurlLoop::startThread() {
    if (!isRunning_ && !leaving_) isRunning_ = startDetachedThread([this] { run(); });
    return isRunning_ || leaving_;
}

void CurlLoop::run() {
    while (!leaving_) {
        callOut("the network loop", [this] {
            handleSubmitted();
            performTransfers();
            endIdleTransfers();
            waitForEvents();
        });
    }
    // Nothing else is cleaned up: the process goes, and a name look-up in progress could hold it.
    for (auto& [handle, flight] : flights_) flight.transfer->dropFile();
    {
        const MutexLock lock(mutex_);
        isRunning_ = false;
        changed_.notify_all();
    }
    // Nor does the thread end: what other libraries keep for it may be half gone by now.
    for (;;) ::pause();
}

void CurlLoop::handleSubmitted() {
    std::vector<Transfer> submitted;
    bool mustCancelAll = false;
    {
        const MutexLock lock(mutex_);
        submitted.swap(submitted_);
        mustCancelAll = std::exchange(mustCancelAll_, false);
    }
    if (mustCancelAll) cancelAllButReports();
    for (const auto& transfer : submitted) {
        if (transfer->wasCancelled()) {
            cancel(transfer);
        } else {
            queueForItsHost(transfer);
        }
    }
}

void CurlLoop::cancel(const Transfer& transfer) {
    if (transfer->hasEnded()) return;
    // One that waits for its host is passed over when its turn comes.
    if (flights_.contains(transfer->handle())) takeOut(transfer->handle());
    transfer->endWithError(UrlError::cancelled);
}

void CurlLoop::cancelAllButReports() {
    std::vector<Transfer> transfers;
    for (const auto& [name, host] : hosts_)
        transfers.insert(transfers.end(), host.waiting.begin(), host.waiting.end());
    for (const auto& [handle, flight] : flights_) transfers.push_back(flight.transfer);
    for (const auto& transfer : transfers) {
        if (!transfer->isReport()) cancel(transfer);
    }
}

void CurlLoop::queueForItsHost(const Transfer& transfer) {
    const auto host = transfer->destination();
    if (!host) return;
    hosts_[*host].waiting.push_back(transfer);
    startWaiting(*host);
}

void CurlLoop::startWaiting(const std::string& name) {
    auto& host = hosts_[name];
    while (host.inFlight < UrlSession::kMostInFlightPerHost && !host.waiting.empty()) {
        const auto transfer = std::move(host.waiting.front());
        host.waiting.pop_front();
        if (transfer->hasEnded() || !start(transfer)) continue;
        flights_.emplace(transfer->handle(), Flight{transfer, name});
        ++host.inFlight;
    }
    if (host.inFlight == 0 && host.waiting.empty()) hosts_.erase(name);
}

bool CurlLoop::start(const Transfer& transfer) {
    if (transfer->prepare(share_) && curl_multi_add_handle(multi_, transfer->handle()) == CURLM_OK)
        return true;
    transfer->endWithError(UrlError::unknown);
    return false;
}

void CurlLoop::performTransfers() {
    int number = 0;
    curl_multi_perform(multi_, &number);
    while (const auto* message = curl_multi_info_read(multi_, &number)) {
        if (message->msg != CURLMSG_DONE) continue;
        // The message is gone once its handle is taken out.
        const auto result = message->data.result;
        takeOut(message->easy_handle)->endWithResult(result);
    }
}

void CurlLoop::endIdleTransfers() {
    const auto oldest = Clock::now() - idleTimeout.load();
    std::vector<CURL*> idle;
    for (const auto& [handle, flight] : flights_) {
        if (flight.transfer->lastActivity() < oldest) idle.push_back(handle);
    }
    for (auto* handle : idle) takeOut(handle)->endWithError(UrlError::timedOut);
}

void CurlLoop::waitForEvents() {
    auto longest = kLongestWait;
    for (const auto& [handle, flight] : flights_) {
        const auto left = flight.transfer->lastActivity() + idleTimeout.load() - Clock::now();
        longest = std::clamp(std::chrono::ceil<std::chrono::milliseconds>(left), {}, longest);
    }
    // Returns at once for what was submitted since and for what has just been started.
    curl_multi_poll(multi_, nullptr, 0, static_cast<int>(longest.count()) + 1, nullptr);
}

CurlLoop::Transfer CurlLoop::takeOut(CURL* handle) {
    const auto found = flights_.find(handle);
    const auto flight = std::move(found->second);
    flights_.erase(found);
    curl_multi_remove_handle(multi_, handle);
    --hosts_[flight.host].inFlight;
    startWaiting(flight.host);
    return flight.transfer;
}

}  // namespace velmora::platform
