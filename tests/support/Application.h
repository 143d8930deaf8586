#pragma once

#include <chrono>
#include <functional>
#include <string>

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

namespace velmora::test {

/// The application object of a host, whose event loop runs when it is told to.
class Application {
public:
    /// Runs the event loop until `done`; false when that takes more than ten seconds.
    bool runUntil(const std::function<bool()>& done) {
        QTimer bound;
        bound.setSingleShot(true);
        bound.start(std::chrono::seconds(10));
        while (!done() && bound.isActive()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return done();
    }

private:
    std::string name_ = "test";
    char* arguments_[2] = {name_.data(), nullptr};
    int count_ = 1;
    QCoreApplication application_{count_, arguments_};
};

}  // namespace velmora::test
