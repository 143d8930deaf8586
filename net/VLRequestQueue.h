#pragma once

#include "model/AtomicProperty.h"
#include "model/VLRequestQueueImpl.h"

#include <atomic>
#include <memory>

namespace velmora {

/// Sends the requests of the persistent queue, one at a time, oldest first; one that fails is tried again
/// after 60 seconds, for ever, and holds up the rest.
///
/// Nothing in this version puts a request into it, or asks for the shared one.
class VLRequestQueue : public std::enable_shared_from_this<VLRequestQueue> {
public:
    /// The one of the process, made by the first call, which also starts the sending.
    [[nodiscard]] static std::shared_ptr<VLRequestQueue> sharedRequestQueue();

    void loadData();
    void saveRequests();

    /// Adds and saves the request only when no queue is in memory; starts the sending in any case.
    void addRequest(const std::shared_ptr<VLCachedRequestItem>& item);

    /// Starts a sending run unless one is under way.
    void sendRequests();

    /// Sends the oldest request; the run ends when there is none.
    void sendNextRequest();

    AtomicProperty<std::shared_ptr<VLRequestQueueImpl>> requestsQueue;
    /// Whether a sending run is under way, the wait after a failure included.
    std::atomic<bool> isSendingLogs = false;
};

}  // namespace velmora
