#pragma once

#include <QGuiApplication>
#include <QRect>
#include <QScreen>

/// What the toolkit's own plugins tell of a screen; its header is not among those for applications.
class QWindowSystemInterface {
public:
    static void handleScreenGeometryChange(QScreen* screen, const QRect& all, const QRect& available);
};

namespace velmora::test {

/// The main screen has this size, as after it was turned, as long as this lives.
class TurnedScreen {
public:
    explicit TurnedScreen(const QSize& size) { turn({QPoint(), size}); }
    ~TurnedScreen() { turn(before_); }
    TurnedScreen(const TurnedScreen&) = delete;
    TurnedScreen& operator=(const TurnedScreen&) = delete;

private:
    static void turn(const QRect& all) {
        QWindowSystemInterface::handleScreenGeometryChange(QGuiApplication::primaryScreen(), all, all);
        QCoreApplication::processEvents();
    }

    const QRect before_ = QGuiApplication::primaryScreen()->geometry();
};

}  // namespace velmora::test
