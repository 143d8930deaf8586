#pragma once

#include "platform/Location.h"
#include "platform/Mutex.h"

#include <functional>
#include <memory>

#include <gio/gio.h>

namespace velmora::platform {

/// The positions of one client of GeoClue 2, over a connection of its own to the system bus. It has a thread
/// of its own too, where its calls over the bus wait for as long as the service takes.
class PositionSource : public std::enable_shared_from_this<PositionSource> {
public:
    struct Receiver {
        std::function<void(const Location& location)> located;
        /// The service gives this application no positions.
        std::function<void()> refused;
        /// No more come: there is no service, it failed, or it went away.
        std::function<void()> ended;
    };

    /// The receiver is called on the source's thread, until it has stopped; after `refused` or `ended` no
    /// more.
    explicit PositionSource(Receiver receiver);
    ~PositionSource();
    PositionSource(const PositionSource&) = delete;
    PositionSource& operator=(const PositionSource&) = delete;

    /// Once. Any thread, and it waits for nothing.
    void start();
    /// Any thread, and it waits for nothing. A call that is under way may still come.
    void stop();

private:
    class Client;

    void run();
    [[nodiscard]] bool isStopped();

    const Receiver receiver_;
    GMainContext* const context_;
    GCancellable* const cancellable_;
};

}  // namespace velmora::platform
