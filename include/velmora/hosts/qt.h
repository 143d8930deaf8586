#pragma once

/// For applications of Qt: callbacks on the thread of the application object. Needs Qt Core.

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

#include <velmora/velmora.h>

#include <QCoreApplication>
#include <QMetaObject>
#include <QObject>

namespace velmora::hosts {

namespace qt {

/// An object of the application's thread that lives as long as the application object.
class Receiver {
public:
    static Receiver& instance() {
        static auto* receiver = new Receiver;
        return *receiver;
    }

    void attach() {
        auto object = std::make_unique<QObject>();
        object->moveToThread(QCoreApplication::instance()->thread());
        qAddPostRoutine([] { instance().replace(nullptr); });
        replace(std::move(object));
    }

    void post(std::function<void()> work) {
        const std::lock_guard<std::mutex> lock(mutex_);
        // Without an application object nothing is called; what waits stays with the library.
        if (!object_) return;
        work_.push_back(std::move(work));
        if (work_.size() == 1) wake();
    }

private:
    void replace(std::unique_ptr<QObject> object) {
        const std::lock_guard<std::mutex> lock(mutex_);
        object_.swap(object);
        work_.clear();
    }

    /// One call is on its way while any work waits.
    void wake() {
        QMetaObject::invokeMethod(
            object_.get(), [] { instance().runNext(); }, Qt::QueuedConnection);
    }

    void runNext() {
        std::function<void()> work;
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            if (work_.empty()) return;
            work = std::move(work_.front());
            work_.pop_front();
            // Right before the work: an event loop that runs in it sleeps over what was posted earlier.
            if (object_ && !work_.empty()) wake();
        }
        work();
    }

    std::mutex mutex_;
    std::unique_ptr<QObject> object_;
    std::deque<std::function<void()>> work_;
};

}  // namespace qt

/// Has callbacks run at a later turn of the event loop of the application object. To be called once that has
/// been made, and again when another one has; without any, nothing changes.
inline void useQt() {
    if (QCoreApplication::instance() == nullptr) return;
    qt::Receiver::instance().attach();
    Velmora::setMainQueue([](std::function<void()> work) { qt::Receiver::instance().post(std::move(work)); });
}

}  // namespace velmora::hosts
