#include "screen/Application.h"

#include "screen/qt/presentation/RootControllers.h"

#include <utility>

#include <QApplication>
#include <QScreen>

namespace velmora::screen {

bool Application::hasScreen() {
    return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr &&
           QGuiApplication::primaryScreen() != nullptr;
}

std::shared_ptr<ViewController> Application::rootViewController() {
    return RootControllers::instance().current();
}

void Application::setRootViewController(std::shared_ptr<ViewController> controller) {
    RootControllers::instance().set(std::move(controller));
}

}  // namespace velmora::screen
