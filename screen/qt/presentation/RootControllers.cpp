#include "screen/qt/presentation/RootControllers.h"

#include "platform/Immortal.h"
#include "screen/Application.h"
#include "screen/qt/presentation/Presentation.h"

#include <utility>

#include <QApplication>
#include <QPointer>
#include <QWidget>

namespace velmora::screen {

namespace {

/// Not a menu or a tool tip, which may be active but go at any time.
bool isWindowOfApplication(const QWidget* window) {
    if (window == nullptr || Presentation::instance().owns(window)) return false;
    return window->windowType() == Qt::Window || window->windowType() == Qt::Dialog;
}

}  // namespace

/// Stands for a window of the application's; what it presents lies in a window of ours.
class RootControllers::WindowController final : public ViewController {
public:
    explicit WindowController(QWidget* ofWindow) : window(ofWindow) {}

    const QPointer<QWidget> window;
};

RootControllers& RootControllers::instance() {
    static platform::Immortal<RootControllers> instance;
    return *instance;
}

RootControllers::Controller RootControllers::current() {
    if (set_) return set_;
    // Another window may have come to the address of one that went.
    std::erase_if(ofWindows_, [](const auto& known) { return known.second->window.isNull(); });
    auto* front = window();
    if (front == nullptr) return nullptr;
    auto& controller = ofWindows_[front];
    if (!controller) controller = std::make_shared<WindowController>(front);
    last_ = controller;
    return controller;
}

void RootControllers::set(Controller controller) { std::swap(set_, controller); }

bool RootControllers::has(const ViewController& controller) const {
    for (auto one = set_; one; one = one->parentViewController()) {
        if (one.get() == &controller) return true;
    }
    for (const auto& [address, known] : ofWindows_) {
        if (known.get() == &controller) return !known->window.isNull();
    }
    return false;
}

QWidget* RootControllers::window() const {
    if (!Application::hasScreen()) return nullptr;
    if (auto* active = QApplication::activeWindow(); isWindowOfApplication(active)) return active;
    // While an ad has the focus, its application's window is the one that had it.
    if (const auto last = last_.lock(); last && last->window && last->window->isVisible())
        return last->window;
    for (auto* window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && isWindowOfApplication(window)) return window;
    }
    return nullptr;
}

}  // namespace velmora::screen
