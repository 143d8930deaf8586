#pragma once

#include "platform/Location.h"
#include "platform/Mutex.h"

#include <functional>
#include <memory>

class QEventLoop;
class QGeoPositionInfo;

namespace velmora::platform {

/// The positions of one GeoClue client, from Qt Positioning. It has a thread of its own with an event loop,
/// for some of the toolkit's calls over the bus wait as long as the service does.
class PositionSource : public std::enable_shared_from_this<PositionSource> {
public:
    struct Receiver {
        std::function<void(const Location& location)> located;
        /// The service refused, or failed: the toolkit does not tell which.
        std::function<void()> refused;
    };

    /// The receiver is called on the source's thread, until it has stopped.
    explicit PositionSource(Receiver receiver);

    /// Once, on the main thread.
    void start();
    /// Waits for nothing. A call that is under way may still come.
    void stop();

private:
    void run();
    void receiveIn(QEventLoop& loop);

    const Receiver receiver_;
    Mutex mutex_;
    bool isStopped_ VELMORA_GUARDED_BY(mutex_) = false;
    QEventLoop* loop_ VELMORA_GUARDED_BY(mutex_) = nullptr;
};

}  // namespace velmora::platform
