#include "MainThread.h"

#include <utility>

#include <QMetaObject>
#include <QObject>

namespace demo {

MainThread::MainThread(QObject& target) : target_(&target) {}

void MainThread::post(std::function<void()> work) const {
    const std::lock_guard lock(mutex_);
    if (target_ != nullptr) QMetaObject::invokeMethod(target_, std::move(work), Qt::QueuedConnection);
}

void MainThread::close() {
    const std::lock_guard lock(mutex_);
    target_ = nullptr;
}

}  // namespace demo
