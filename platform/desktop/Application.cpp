#include "platform/Application.h"

#include "platform/Immortal.h"
#include "platform/Log.h"
#include "platform/ViewController.h"
#include "platform/desktop/Presentation.h"

#include <utility>

#include <QApplication>
#include <QPointer>
#include <QScreen>
#include <QWidget>

// GIO names a struct member as Qt names a macro.
#undef signals
#include <gio/gio.h>

namespace velmora::platform {

namespace {

/// Stands for a window of the application's; what it presents lies in a window of ours.
class WindowController final : public ViewController {
public:
    explicit WindowController(QWidget* ofWindow) : window(ofWindow) {}

    const QPointer<QWidget> window;
};

struct Roots {
    std::shared_ptr<ViewController> set;
    std::shared_ptr<WindowController> ofWindow;
};

Roots& roots() {
    static Immortal<Roots> instance;
    return *instance;
}

bool hasWidgets() { return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr; }

bool isOurs(const QWidget* window) { return Presentation::instance().owns(window); }

QWidget* applicationWindow() {
    if (!hasWidgets()) return nullptr;
    if (auto* active = QApplication::activeWindow(); active != nullptr && !isOurs(active)) return active;
    // While an ad has the focus, its application's window is the one that had it.
    if (const auto& known = roots().ofWindow; known && known->window && known->window->isVisible())
        return known->window;
    for (auto* window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->windowType() != Qt::Popup && !isOurs(window)) return window;
    }
    return nullptr;
}

struct Release {
    void operator()(GObject* object) const noexcept { g_object_unref(object); }
    void operator()(GError* error) const noexcept { g_error_free(error); }
    void operator()(char* text) const noexcept { g_free(text); }
};

void onOpened(GObject*, GAsyncResult* result, gpointer) {
    GError* failure = nullptr;
    if (g_app_info_launch_default_for_uri_finish(result, &failure) != 0) return;
    const std::unique_ptr<GError, Release> error(failure);
    log(std::string("A URL cannot be opened: ") + (error ? error->message : "no reason given"));
}

}  // namespace

bool Application::hasScreen() { return hasWidgets() && QGuiApplication::primaryScreen() != nullptr; }

std::shared_ptr<ViewController> Application::rootViewController() {
    if (roots().set) return roots().set;
    auto* window = applicationWindow();
    auto& known = roots().ofWindow;
    if (window == nullptr) {
        known.reset();
    } else if (!known || known->window != window) {
        known = std::make_shared<WindowController>(window);
    }
    return known;
}

void Application::setRootViewController(std::shared_ptr<ViewController> controller) {
    std::swap(roots().set, controller);
}

InterfaceOrientation Application::statusBarOrientation() {
    if (!hasScreen()) return InterfaceOrientation::unknown;
    const auto* screen = QGuiApplication::primaryScreen();
    switch (screen->orientation()) {
    case Qt::PortraitOrientation: return InterfaceOrientation::portrait;
    case Qt::InvertedPortraitOrientation: return InterfaceOrientation::portraitUpsideDown;
    case Qt::LandscapeOrientation: return InterfaceOrientation::landscapeRight;
    case Qt::InvertedLandscapeOrientation: return InterfaceOrientation::landscapeLeft;
    default: break;
    }
    const auto size = screen->size();
    return size.width() > size.height() ? InterfaceOrientation::landscapeRight
                                        : InterfaceOrientation::portrait;
}

ScreenSize Application::mainScreenSize() {
    if (!hasScreen()) return {};
    const auto size = QGuiApplication::primaryScreen()->size();
    return {static_cast<double>(size.width()), static_cast<double>(size.height())};
}

bool Application::canOpenUrl(const std::string& url) {
    const std::unique_ptr<char, Release> scheme(g_uri_parse_scheme(url.c_str()));
    if (!scheme) return false;
    auto* handler = g_app_info_get_default_for_uri_scheme(scheme.get());
    const std::unique_ptr<GObject, Release> held(G_OBJECT(handler));
    return handler != nullptr;
}

void Application::openUrl(const std::string& url) {
    g_app_info_launch_default_for_uri_async(url.c_str(), nullptr, nullptr, onOpened, nullptr);
}

}  // namespace velmora::platform
