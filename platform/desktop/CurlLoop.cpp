#include "platform/desktop/CurlLoop.h"

#include "platform/CallOut.h"
#include "platform/Log.h"
#include "platform/UrlSession.h"
#include "platform/desktop/CurlTransfer.h"

#include <algorithm>
#include <string>
#include <system_error>
#include <utility>

namespace velmora::platform {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kIdleTimeout{60'000};
constexpr std::chrono::milliseconds kLongestSleep{std::chrono::hours(1)};
constexpr std::chrono::milliseconds kPatienceAtTheEnd{1000};
/// How long after an exchange another one is likely.
constexpr std::chrono::seconds kKeptWarm{15};
/// How long a request takes to be put together, at most.
constexpr std::chrono::microseconds kLinger{100};
constexpr std::size_t kMostHeldBack = 64;
constexpr long kKeptConnections = 64;

CURLM* makeMulti() {
    curl_global_init(CURL_GLOBAL_DEFAULT);
    auto* multi = curl_multi_init();
    curl_multi_setopt(multi, CURLMOPT_MAXCONNECTS, kKeptConnections);
    return multi;
}

CURLSH* makeShare() {
    // Only the loop's thread uses it, so that it needs no locks.
    auto* share = curl_share_init();
    curl_share_setopt(share, CURLSHOPT_SHARE, CURL_LOCK_DATA_COOKIE);
    return share;
}

}  // namespace

CurlLoop::CurlLoop() : idleTimeout(kIdleTimeout), multi_(makeMulti()), share_(makeShare()) {}

void CurlLoop::submit(Transfer transfer) {
    const MutexLock lock(mutex_);
    if (!startThreads()) {
        mutex_.unlock();
        transfer->finish(UrlError::unknown);
        mutex_.lock();
        if (!completing_) complete();
        return;
    }
    submitted_.push_back(std::move(transfer));
    anySubmitted_ = true;
    if (receiving_) {
        // A wake-up costs a system call, which a burst of submissions needs once.
        if (maySleep_.exchange(false)) curl_multi_wakeup(multi_);
        return;
    }
    changed_.notify_one();
}

void CurlLoop::expect() {
    const MutexLock lock(mutex_);
    if (receiving_ || anyInFlight_ || Clock::now() >= warmUntil_) return;
    expecting_ = true;
    changed_.notify_one();
}

void CurlLoop::deliver(std::function<void()> work) {
    const MutexLock lock(mutex_);
    ended_.push_back(std::move(work));
}

void CurlLoop::leave() {
    const MutexLock lock(mutex_);
    leaving_ = true;
    changed_.notify_all();
    curl_multi_wakeup(multi_);
    const auto end = Clock::now() + kPatienceAtTheEnd;
    const auto isBusy = [this]() VELMORA_REQUIRES(mutex_) {
        return receiving_ || (completing_ && completing_ != std::this_thread::get_id());
    };
    while (isBusy() && Clock::now() < end) changed_.wait_until(mutex_, end);
    if (receiving_) return;
    for (auto& [handle, flight] : flights_) flight.transfer->dropFile();
}

bool CurlLoop::startThreads() {
    while (threads_.size() < 2 && !leaving_) {
        try {
            std::thread thread([this] { work(); });
            threads_.push_back(thread.get_id());
            thread.detach();
        } catch (const std::system_error& error) {
            log(std::string("A thread for the network cannot be started: ") + error.what());
            break;
        }
    }
    return !threads_.empty();
}

void CurlLoop::work() {
    const MutexLock lock(mutex_);
    // At the end nothing is cleaned up: the process goes, and a name look-up in progress could hold it. Nor
    // does the thread end, because what other libraries keep for it may be half gone by then.
    for (;;) {
        if (!leaving_ && !completing_ && !ended_.empty()) {
            complete();
        } else if (!leaving_ && mustReceive()) {
            receive(&CurlLoop::turn);
        } else if (!leaving_ && !receiving_ && expecting_) {
            receive(&CurlLoop::linger);
        } else {
            changed_.wait(mutex_);
        }
    }
}

bool CurlLoop::mustReceive() const { return !receiving_ && (anyInFlight_ || !submitted_.empty()); }

void CurlLoop::receive(void (CurlLoop::*what)()) {
    receiving_ = true;
    expecting_ = false;
    mutex_.unlock();
    callOut("the network loop", [&] { (this->*what)(); });
    mutex_.lock();
    receiving_ = false;
    anyInFlight_ = !flights_.empty();
    if (landedAny_) warmUntil_ = Clock::now() + kKeptWarm;
    landedAny_ = false;
    if (leaving_) changed_.notify_all();
}

void CurlLoop::complete() {
    completing_ = std::this_thread::get_id();
    if (mustReceive()) changed_.notify_one();
    while (!ended_.empty() && !leaving_) {
        auto next = std::move(ended_.front());
        ended_.pop_front();
        mutex_.unlock();
        callOut("a callback", next);
        next = nullptr;
        mutex_.lock();
    }
    completing_.reset();
    if (leaving_) changed_.notify_all();
}

void CurlLoop::linger() {
    const auto end = Clock::now() + kLinger;
    while (!anySubmitted_ && !leaving_ && Clock::now() < end) std::this_thread::yield();
}

void CurlLoop::turn() {
    do {
        takeIn();
        int running = 0;
        startedAny_ = false;
        curl_multi_perform(multi_, &running);
        endDone();
        endIdle();
        // What was started is sent off before completions run: the server works meanwhile. But completions
        // must not wait for a load that does not end.
    } while (startedAny_ && mayHoldBack());
    if (!startedAny_ && !flights_.empty()) sleep();
}

bool CurlLoop::mayHoldBack() const {
    const MutexLock lock(mutex_);
    return ended_.size() < kMostHeldBack && !leaving_;
}

void CurlLoop::takeIn() {
    std::vector<Transfer> submitted;
    {
        const MutexLock lock(mutex_);
        submitted.swap(submitted_);
        anySubmitted_ = false;
    }
    for (auto& transfer : submitted) takeIn(std::move(transfer));
}

void CurlLoop::takeIn(Transfer transfer) {
    if (transfer->isEnded()) return;
    if (transfer->wasCancelled()) {
        if (flights_.contains(transfer->handle())) return land(transfer->handle(), UrlError::cancelled);
        // One that waits for its host is passed over when its turn comes.
        return transfer->finish(UrlError::cancelled);
    }
    const auto host = transfer->destination();
    if (!host) return;
    hosts_[*host].waiting.push_back(std::move(transfer));
    startWaiting(*host);
}

void CurlLoop::startWaiting(const std::string& name) {
    auto& host = hosts_[name];
    while (host.inFlight < UrlSession::kMostInFlightPerHost && !host.waiting.empty()) {
        const auto transfer = std::move(host.waiting.front());
        host.waiting.pop_front();
        if (transfer->isEnded()) continue;
        auto fresh = freshHandle();
        if (!fresh) {
            transfer->finish(UrlError::unknown);
            continue;
        }
        transfer->prepare(std::move(fresh));
        if (curl_multi_add_handle(multi_, transfer->handle()) != CURLM_OK) {
            // A handle belongs to this thread, and knows another exchange's status.
            static_cast<void>(transfer->takeHandle());
            transfer->finish(UrlError::unknown);
            continue;
        }
        startedAny_ = true;
        flights_.emplace(transfer->handle(), Flight{transfer, name});
        ++host.inFlight;
    }
    if (host.inFlight == 0 && host.waiting.empty()) hosts_.erase(name);
}

CurlHandle CurlLoop::freshHandle() {
    if (spare_.empty()) return CurlTransfer::makeHandle(share_);
    auto handle = std::move(spare_.back());
    spare_.pop_back();
    return handle;
}

void CurlLoop::endDone() {
    int left = 0;
    while (const auto* message = curl_multi_info_read(multi_, &left)) {
        // The message is gone once its handle is taken out.
        if (message->msg == CURLMSG_DONE) land(message->easy_handle, message->data.result);
    }
}

void CurlLoop::endIdle() {
    const auto oldest = Clock::now() - idleTimeout.load();
    std::vector<CURL*> idle;
    for (const auto& [handle, flight] : flights_) {
        if (flight.transfer->lastActivity() < oldest) idle.push_back(handle);
    }
    for (auto* handle : idle) land(handle, UrlError::timedOut);
}

void CurlLoop::sleep() {
    auto longest = kLongestSleep;
    for (const auto& [handle, flight] : flights_) {
        const auto left = flight.transfer->lastActivity() + idleTimeout.load() - Clock::now();
        longest = std::clamp(std::chrono::ceil<std::chrono::milliseconds>(left), {}, longest);
    }
    maySleep_ = true;
    const bool nothingToDo = [this] {
        const MutexLock lock(mutex_);
        return submitted_.empty() && (ended_.empty() || completing_) && !leaving_;
    }();
    if (nothingToDo) curl_multi_poll(multi_, nullptr, 0, static_cast<int>(longest.count()) + 1, nullptr);
    maySleep_ = false;
}

template <class Result>
void CurlLoop::land(CURL* handle, Result result) {
    const auto found = flights_.find(handle);
    const auto flight = std::move(found->second);
    flights_.erase(found);
    landedAny_ = true;
    curl_multi_remove_handle(multi_, handle);
    flight.transfer->finish(result);
    // Taken here in any case: a handle belongs to this thread, and the transfer may go on another one.
    auto own = flight.transfer->takeHandle();
    if (spare_.size() < UrlSession::kMostInFlightPerHost) spare_.push_back(std::move(own));
    --hosts_[flight.host].inFlight;
    startWaiting(flight.host);
}

}  // namespace velmora::platform
