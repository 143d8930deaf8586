#pragma once

#include <chrono>
#include <functional>

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

namespace velmora::test {

/// Runs the event loop of the application object that there is until `done`; false when that takes too long.
inline bool runUntil(const std::function<bool()>& done,
                     std::chrono::milliseconds most = std::chrono::seconds(60)) {
    // Wakes the loop, also for what happens outside of it.
    QTimer tick;
    tick.start(std::chrono::milliseconds(5));
    const auto end = std::chrono::steady_clock::now() + most;
    while (!done() && std::chrono::steady_clock::now() < end)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return done();
}

/// Runs what has been given to the event loop so far, and what that gives to it.
inline void settle() {
    for (int turn = 0; turn < 5; ++turn) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

}  // namespace velmora::test
