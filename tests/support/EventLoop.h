#pragma once

#include <chrono>
#include <functional>

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

namespace velmora::test {

/// Runs the application's event loop until `done`; false when that takes too long.
inline bool runUntil(const std::function<bool()>& done,
                     std::chrono::seconds most = std::chrono::seconds(60)) {
    QTimer bound;
    bound.setSingleShot(true);
    bound.start(most);
    while (!done() && bound.isActive()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return done();
}

}  // namespace velmora::test
