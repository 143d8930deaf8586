#pragma once

#include <functional>
#include <mutex>

class QObject;

namespace demo {

/// The way from a callback on any thread to an object on the main one. It outlives the object: what comes
/// after `close()` is dropped.
class MainThread {
public:
    explicit MainThread(QObject& target);

    void post(std::function<void()> work) const;
    void close();

private:
    mutable std::mutex mutex_;
    QObject* target_;
};

}  // namespace demo
