#include "net/VLRequestQueue.h"

#include "model/VLCachedRequestItem.h"
#include "net/VLWebServices.h"
#include "platform/Immortal.h"
#include "platform/MainQueue.h"
#include "platform/Mutex.h"
#include "store/VLDefaults.h"

#include <chrono>
#include <exception>

namespace velmora {

namespace {

constexpr std::chrono::seconds kPauseAfterFailure{60};

/// Two threads must neither make the shared queue twice nor each load the stored one to add a request to it:
/// the one that saves last would drop what the other has added.
platform::Mutex VLRequestQueueLock;

}  // namespace

std::shared_ptr<VLRequestQueue> VLRequestQueue::sharedRequestQueue() {
    static platform::Immortal<std::shared_ptr<VLRequestQueue>> instance;
    std::shared_ptr<VLRequestQueue> made;
    {
        const platform::MutexLock lock(VLRequestQueueLock);
        if (*instance) return *instance;
        made = *instance = std::make_shared<VLRequestQueue>();
        made->loadData();
    }
    // Outside the lock: it sends.
    made->sendRequests();
    return made;
}

void VLRequestQueue::loadData() {
    auto stored = VLDefaults::getRequestQueue();
    requestsQueue.set(stored ? std::move(stored) : std::make_shared<VLRequestQueueImpl>());
}

void VLRequestQueue::saveRequests() { VLDefaults::setRequestQueue(requestsQueue.get()); }

void VLRequestQueue::addRequest(const std::shared_ptr<VLCachedRequestItem>& item) {
    if (item) {
        const platform::MutexLock lock(VLRequestQueueLock);
        if (!requestsQueue.get()) {
            try {
                loadData();
            } catch (const std::exception&) {
                requestsQueue.set(std::make_shared<VLRequestQueueImpl>());
            }
            requestsQueue.get()->addRequestToQueue(item);
            saveRequests();
        }
    }
    sendRequests();
}

void VLRequestQueue::sendRequests() {
    if (!requestsQueue.get()) loadData();
    if (!isSendingLogs.exchange(true)) sendNextRequest();
}

void VLRequestQueue::sendNextRequest() {
    const auto queue = requestsQueue.get();
    if (!queue || queue->count() == 0) {
        isSendingLogs = false;
        return;
    }
    const auto requests = queue->getRequests();
    const auto item = requests->empty() ? nullptr : requests->front();
    if (!item) {
        queue->removeItem(item);
        return sendNextRequest();
    }
    const auto onSuccess = [self = shared_from_this(), item](std::int64_t) {
        // The store keeps the item until the next save, and a later process sends it again.
        if (const auto now = self->requestsQueue.get()) now->removeItem(item);
        self->sendNextRequest();
    };
    const auto onFailure = [self = shared_from_this()](const VLClientError&) {
        platform::MainQueue::after(kPauseAfterFailure, [self] { self->sendNextRequest(); });
    };
    VLWebServices::callCachedRequest(item, onSuccess, onFailure);
}

}  // namespace velmora
