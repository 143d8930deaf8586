#pragma once

/// For applications of Qt: callbacks on the thread of the application object. Needs Qt Core.

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
        replace(std::move(object));
        qAddPostRoutine([] { instance().replace(nullptr); });
    }

    void post(std::function<void()> work) {
        const std::lock_guard<std::mutex> lock(mutex_);
        // Without an application object nothing is called; what waits stays with the library.
        if (object_) QMetaObject::invokeMethod(object_.get(), std::move(work), Qt::QueuedConnection);
    }

private:
    void replace(std::unique_ptr<QObject> object) {
        const std::lock_guard<std::mutex> lock(mutex_);
        object_.swap(object);
    }

    std::mutex mutex_;
    std::unique_ptr<QObject> object_;
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
