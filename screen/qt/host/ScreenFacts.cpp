#include "platform/Immortal.h"
#include "platform/Screen.h"

#include <memory>

#include <QGuiApplication>
#include <QObject>
#include <QScreen>

namespace velmora::screen {

namespace {

platform::InterfaceOrientation orientationOf(const QScreen& screen) {
    switch (screen.orientation()) {
    case Qt::PortraitOrientation: return platform::InterfaceOrientation::portrait;
    case Qt::InvertedPortraitOrientation: return platform::InterfaceOrientation::portraitUpsideDown;
    case Qt::LandscapeOrientation: return platform::InterfaceOrientation::landscapeRight;
    case Qt::InvertedLandscapeOrientation: return platform::InterfaceOrientation::landscapeLeft;
    default: break;
    }
    const auto size = screen.size();
    return size.width() > size.height() ? platform::InterfaceOrientation::landscapeRight
                                        : platform::InterfaceOrientation::portrait;
}

platform::Screen factsOf(const QScreen* screen) {
    if (screen == nullptr) return {};
    const auto size = screen->size();
    return {.size = {static_cast<double>(size.width()), static_cast<double>(size.height())},
            .scale = screen->devicePixelRatio(),
            .orientation = orientationOf(*screen)};
}

/// Tells the library of the toolkit's main screen, which belongs to the toolkit's thread.
class MainScreen {
public:
    static MainScreen& instance() {
        static platform::Immortal<MainScreen> screen;
        return *screen;
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
        platform::Screen::setMain({});
    }

private:
    void follow(const QScreen* screen) {
        followed_ = std::make_unique<QObject>();
        const auto look = [screen] { platform::Screen::setMain(factsOf(screen)); };
        if (screen != nullptr) {
            QObject::connect(screen, &QScreen::geometryChanged, followed_.get(), look);
            QObject::connect(screen, &QScreen::orientationChanged, followed_.get(), look);
            // A change of scale has no signal of its own.
            QObject::connect(screen, &QScreen::physicalDotsPerInchChanged, followed_.get(), look);
            QObject::connect(screen, &QScreen::logicalDotsPerInchChanged, followed_.get(), look);
        }
        look();
    }

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

}  // namespace velmora::screen
