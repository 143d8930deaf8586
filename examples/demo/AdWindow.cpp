#include "AdWindow.h"

#include <optional>

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>

namespace demo {

namespace {

/// What touches: an event at a time, each to whom it hits.
void touch(QWidget& window, QPoint at) {
    QWidget* hit = window.childAt(at);
    const QPointer<QWidget> target(hit != nullptr ? hit : &window);
    const QPointF global = window.mapToGlobal(at);
    const QPointF local = target->mapFromGlobal(global);
    const auto send = [&](QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons down) {
        if (!target) return;
        QMouseEvent event(type, local, global, button, down, Qt::NoModifier);
        QApplication::sendEvent(target, &event);
    };
    send(QEvent::MouseMove, Qt::NoButton, Qt::NoButton);
    send(QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoButton);
}

void press(QWidget& target, int key, Qt::KeyboardModifiers modifiers, const QString& text = {}) {
    const QPointer<QWidget> alive(&target);
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, modifiers, text);
        if (alive) QApplication::sendEvent(alive, &event);
    }
}

bool isOneColour(const QImage& image) {
    const auto first = image.pixel(image.width() / 2, image.height() / 2);
    for (int y = 0; y < image.height(); y += 16) {
        for (int x = 0; x < image.width(); x += 16) {
            if (image.pixel(x, y) != first) return false;
        }
    }
    return true;
}

/// The middle of the lowest line of this colour that is long enough for a button.
std::optional<QPoint> lowestLine(const QImage& image, QRgb colour) {
    constexpr int longEnough = 100;
    for (int y = image.height() - 1; y >= 0; --y) {
        int length = 0;
        for (int x = 0; x < image.width(); ++x) {
            length = image.pixel(x, y) == colour ? length + 1 : 0;
            if (length == longEnough) return QPoint(x - longEnough / 2, y);
        }
    }
    return std::nullopt;
}

}  // namespace

AdWindow::AdWindow(const QWidget& ours) : ours_(ours) {}

QWidget* AdWindow::widget() const {
    for (auto* window : QApplication::topLevelWidgets()) {
        if (window != &ours_ && window->isVisible() && window->windowType() == Qt::Window) return window;
    }
    return nullptr;
}

QImage AdWindow::picture() const {
    auto* window = widget();
    return window != nullptr ? window->grab().toImage() : QImage();
}

QWidget* AdWindow::button(const char* name) const {
    auto* window = widget();
    if (window == nullptr) return nullptr;
    auto* found = window->findChild<QAbstractButton*>(name);
    return found != nullptr && found->isVisible() ? found : nullptr;
}

bool AdWindow::hasButton(const char* name) const { return button(name) != nullptr; }

void AdWindow::touchButton(const char* name) const {
    if (auto* found = button(name))
        touch(*found->window(), found->mapTo(found->window(), found->rect().center()));
}

QWidget* AdWindow::page() const {
    auto* window = widget();
    if (window == nullptr) return nullptr;
    for (auto* child : window->findChildren<QWidget*>()) {
        if (child->inherits("QWebEngineView") && child->isVisible()) return child;
    }
    return nullptr;
}

bool AdWindow::showsPage() const {
    auto* view = page();
    // Still on its way up while it begins below the top.
    return view != nullptr && view->mapTo(view->window(), QPoint()).y() == 0 &&
           !isOneColour(view->grab().toImage());
}

void AdWindow::touchCornerOfPage() const {
    constexpr int middle = 36;
    if (auto* view = page())
        touch(*view->window(), view->mapTo(view->window(), QPoint(view->width() - middle, middle)));
}

bool AdWindow::touchLastButtonOfPage() const {
    constexpr QRgb pale = qRgb(0xec, 0xe5, 0xd4);
    constexpr int halfButton = 24;
    auto* view = page();
    if (view == nullptr) return false;
    const auto image = view->grab().toImage();
    const auto scale = image.devicePixelRatio();
    const auto edge = lowestLine(image, pale);
    if (!edge) return false;
    const QPoint at((QPointF(*edge) / scale).toPoint() - QPoint(0, halfButton));
    touch(*view->window(), view->mapTo(view->window(), at));
    return true;
}

void AdWindow::chooseLastOfPage() const {
    auto* view = page();
    if (view == nullptr) return;
    auto* target = view->focusProxy() != nullptr ? view->focusProxy() : view;
    press(*target, Qt::Key_Backtab, Qt::ShiftModifier);
    press(*target, Qt::Key_Return, Qt::NoModifier, "\r");
}

}  // namespace demo
