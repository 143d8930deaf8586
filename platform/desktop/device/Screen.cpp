#include "platform/Screen.h"

#include "platform/Immortal.h"
#include "platform/Mutex.h"

#include <memory>

#include <QGuiApplication>
#include <QObject>
#include <QScreen>

namespace velmora::platform {

namespace {

InterfaceOrientation orientationOf(const QScreen& screen) {
    switch (screen.orientation()) {
    case Qt::PortraitOrientation: return InterfaceOrientation::portrait;
    case Qt::InvertedPortraitOrientation: return InterfaceOrientation::portraitUpsideDown;
    case Qt::LandscapeOrientation: return InterfaceOrientation::landscapeRight;
    case Qt::InvertedLandscapeOrientation: return InterfaceOrientation::landscapeLeft;
    default: break;
    }
    const auto size = screen.size();
    return size.width() > size.height() ? InterfaceOrientation::landscapeRight
                                        : InterfaceOrientation::portrait;
}

Screen factsOf(const QScreen* screen) {
    if (screen == nullptr) return {};
    const auto size = screen->size();
    return {.size = {static_cast<double>(size.width()), static_cast<double>(size.height())},
            .scale = screen->devicePixelRatio(),
            .orientation = orientationOf(*screen)};
}

/// The toolkit's screens belong to the main thread: what others may ask is kept here.
class MainScreen {
public:
    static MainScreen& instance() {
        static Immortal<MainScreen> screen;
        return *screen;
    }

    [[nodiscard]] Screen facts() {
        const MutexLock lock(mutex_);
        return facts_;
    }

    void attach() {
        auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
        if (application == nullptr) return;
        owner_ = std::make_unique<QObject>();
        // The library may be loaded by another thread than the application's.
        owner_->moveToThread(application->thread());
        QObject::connect(application, &QGuiApplication::primaryScreenChanged, owner_.get(),
                         [this](const QScreen* screen) { follow(screen); });
        QMetaObject::invokeMethod(owner_.get(), [this] { follow(QGuiApplication::primaryScreen()); });
    }

    void detach() {
        owner_.reset();
        followed_.reset();
        keep(nullptr);
    }

private:
    void follow(const QScreen* screen) {
        followed_ = std::make_unique<QObject>();
        const auto look = [this, screen] { keep(screen); };
        if (screen != nullptr) {
            QObject::connect(screen, &QScreen::geometryChanged, followed_.get(), look);
            QObject::connect(screen, &QScreen::orientationChanged, followed_.get(), look);
            // A change of scale has no signal of its own.
            QObject::connect(screen, &QScreen::physicalDotsPerInchChanged, followed_.get(), look);
            QObject::connect(screen, &QScreen::logicalDotsPerInchChanged, followed_.get(), look);
        }
        look();
    }

    void keep(const QScreen* screen) {
        const auto facts = factsOf(screen);
        const MutexLock lock(mutex_);
        facts_ = facts;
    }

    Mutex mutex_;
    Screen facts_ VELMORA_GUARDED_BY(mutex_);
    std::unique_ptr<QObject> owner_;
    std::unique_ptr<QObject> followed_;
};

void attachToApplication() {
    MainScreen::instance().attach();
    qAddPostRoutine([] { MainScreen::instance().detach(); });
}

// Runs with every application object that is made, at once if there is one when the library is loaded.
Q_COREAPP_STARTUP_FUNCTION(attachToApplication)

}  // namespace

Screen Screen::main() { return MainScreen::instance().facts(); }

}  // namespace velmora::platform
