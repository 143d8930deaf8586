#pragma once

#include "harness/EventLoop.h"

#include <functional>
#include <string>

#include <velmora/hosts/qt.h>

#include <QCoreApplication>

namespace velmora::test {

/// The application object of a host, whose event loop runs when it is told to.
class Application {
public:
    Application() { hosts::useQt(); }

    ~Application() = default;
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /// As the function of that name.
    bool runUntil(const std::function<bool()>& done) { return test::runUntil(done); }

private:
    std::string name_ = "test";
    char* arguments_[2] = {name_.data(), nullptr};
    int count_ = 1;
    QCoreApplication application_{count_, arguments_};
};

}  // namespace velmora::test
