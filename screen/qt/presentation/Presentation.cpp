#include "screen/qt/presentation/Presentation.h"

#include "platform/CallOut.h"
#include "platform/Clock.h"
#include "platform/Immortal.h"
#include "platform/Log.h"
#include "screen/Application.h"
#include "screen/Queue.h"
#include "screen/qt/presentation/RootControllers.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QApplication>
#include <QCloseEvent>
#include <QPalette>
#include <QScreen>
#include <QWidget>
#include <QWindow>

namespace velmora::screen {

namespace {

constexpr std::chrono::milliseconds kDuration{250};
constexpr std::chrono::milliseconds kStep{16};

/// From 0 to 1, fast at first.
double eased(double part) { return 1.0 - std::pow(1.0 - part, 3); }

ViewController* topAncestor(const std::shared_ptr<ViewController>& controller) {
    auto top = controller;
    while (const auto parent = top->parentViewController()) top = parent;
    return top.get();
}

/// Whether it is that one or one of its ancestors.
bool isOrHolds(const ViewController& controller, const std::shared_ptr<ViewController>& that) {
    for (auto one = that; one; one = one->parentViewController()) {
        if (one.get() == &controller) return true;
    }
    return false;
}

}  // namespace

/// Covers the screen; black where no view lies.
class Presentation::Window final : public QWidget {
public:
    Window() : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint) {
        auto black = palette();
        black.setColor(QPalette::Window, Qt::black);
        setPalette(black);
        setAutoFillBackground(true);
        // An ad's end is not the application's, even if no other window is open.
        setAttribute(Qt::WA_QuitOnClose, false);
        if (const auto* screen = QGuiApplication::primaryScreen()) {
            setGeometry(screen->geometry());
            connect(screen, &QScreen::geometryChanged, this, [this](const QRect& all) { setGeometry(all); });
        }
    }

    ~Window() override { Presentation::instance().forget(this); }

    /// Stays above that window, also where that one blocks the rest of its application.
    void lieOver(const QWidget* other) {
        winId();
        if (other != nullptr) windowHandle()->setTransientParent(other->windowHandle());
    }

private:
    void closeEvent(QCloseEvent* event) override {
        event->accept();
        Presentation::instance().abandon();
    }

    void resizeEvent(QResizeEvent*) override { Presentation::instance().layOut(); }
};

Presentation::Presentation() = default;

Presentation::~Presentation() = default;

Presentation& Presentation::instance() {
    static platform::Immortal<Presentation> instance;
    return *instance;
}

bool Presentation::owns(const QWidget* window) const { return window != nullptr && window == window_.get(); }

void Presentation::present(const std::weak_ptr<ViewController>& from, const Controller& controller,
                           bool animated, Completion completion) {
    runOrWait([this, from, controller, animated, completion = std::move(completion)]() mutable {
        presentNow(from, controller, animated, std::move(completion));
    });
}

void Presentation::dismiss(const std::weak_ptr<ViewController>& from, bool animated, Completion completion) {
    runOrWait([this, from, animated, completion = std::move(completion)]() mutable {
        dismissNow(from, animated, std::move(completion));
    });
}

void Presentation::runOrWait(Operation operation) {
    const bool isFirst = waiting_.empty();
    waiting_.push_back(std::move(operation));
    // Those before it may still have to wait until the end of a motion has been told to everybody.
    if (isFirst) runWaiting();
}

void Presentation::runWaiting() {
    while (!isBusy_ && !motion_ && !waiting_.empty()) {
        const auto operation = std::move(waiting_.front());
        waiting_.pop_front();
        isBusy_ = true;
        operation();
        isBusy_ = false;
    }
}

void Presentation::presentNow(const std::weak_ptr<ViewController>& from, const Controller& controller,
                              bool animated, Completion completion) {
    const auto presenter = from.lock();
    if (!presenter || !controller || indexOf(*controller)) return;
    if (!Application::hasScreen())
        return platform::log("Nothing can be presented: the application has no QApplication");
    if (isOrHolds(*controller, presenter)) return platform::log("A controller cannot present itself");
    if (!isOnScreen(presenter))
        return platform::log("Nothing is presented from a controller that is not on the screen");

    if (!window_) openWindow();
    // Above all that is there, and yet the presenter's own: it stays when what lies under it goes.
    stack_.push_back({controller, presenter});
    const auto closed = closed_;
    show(controller, animated);
    if (closed != closed_) return;
    begin({.moving = {controller},
           .up = true,
           .animated = animated,
           .start = {},
           .completion = std::move(completion)});
}

void Presentation::show(const Controller& controller, bool animated) {
    // Loading and laying out are the controller's own, which may close the window.
    const auto closed = closed_;
    auto* view = controller->view();
    if (closed != closed_) return;
    view->setParent(window_.get());
    view->setGeometry(QRect(QPoint(0, animated ? window_->height() : 0), window_->size()));
    view->show();
    if (closed == closed_) view->raise();
}

void Presentation::dismissNow(const std::weak_ptr<ViewController>& from, bool animated,
                              Completion completion) {
    const auto controller = from.lock();
    auto moving = controller ? toDismiss(controller) : std::vector<Controller>();
    if (moving.empty()) return;
    begin({.moving = std::move(moving),
           .up = false,
           .animated = animated,
           .start = {},
           .completion = std::move(completion)});
}

bool Presentation::isOnScreen(const Controller& controller) const {
    const auto* top = topAncestor(controller);
    return indexOf(*top) || RootControllers::instance().has(*top);
}

std::optional<std::size_t> Presentation::indexOf(const ViewController& controller) const {
    const auto found = std::find_if(stack_.begin(), stack_.end(), [&](const Entry& entry) {
        return entry.controller.get() == &controller;
    });
    if (found == stack_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - stack_.begin());
}

std::vector<Presentation::Controller> Presentation::toDismiss(const Controller& from) const {
    for (auto one = from; one; one = one->parentViewController()) {
        if (presentedBy(*one)) return withPresented({}, *one);
    }
    for (auto one = from; one; one = one->parentViewController()) {
        if (indexOf(*one)) return withPresented({one}, *one);
    }
    return {};
}

std::vector<Presentation::Controller> Presentation::withPresented(std::vector<Controller> found,
                                                                  const ViewController& presenter) const {
    const auto has = [&](const ViewController* controller) {
        return std::any_of(found.begin(), found.end(),
                           [&](const Controller& one) { return one.get() == controller; });
    };
    for (const auto& entry : stack_) {
        if (entry.presenter.get() == &presenter || has(topAncestor(entry.presenter)))
            found.push_back(entry.controller);
    }
    return found;
}

Presentation::Controller Presentation::presenterOf(const ViewController& controller) const {
    const auto index = indexOf(controller);
    return index ? stack_[*index].presenter : nullptr;
}

Presentation::Controller Presentation::presentedBy(const ViewController& controller) const {
    for (const auto& entry : stack_) {
        if (entry.presenter.get() == &controller) return entry.controller;
    }
    return nullptr;
}

void Presentation::openWindow() {
    static const QCoreApplication* known = nullptr;
    if (known != QCoreApplication::instance()) {
        known = QCoreApplication::instance();
        qAddPostRoutine([] {
            known = nullptr;
            instance().leave();
        });
    }
    const auto* below = RootControllers::instance().window();
    window_ = std::make_unique<Window>();
    window_->lieOver(below);
    window_->showFullScreen();
    window_->activateWindow();
}

void Presentation::abandon() {
    if (stack_.empty()) return;
    ++generation_;
    ++closed_;
    remains_.push_back({std::exchange(stack_, {}), std::exchange(waiting_, {}),
                        std::exchange(motion_, std::nullopt), std::exchange(window_, nullptr)});
    // What an event of these views runs in may still be at work.
    const auto held = remains_.back().stack;
    for (const auto& entry : held) {
        if (entry.controller->isViewLoaded()) entry.controller->view()->setParent(nullptr);
    }
    Queue::async([] { static_cast<void>(std::exchange(instance().remains_, {})); });
}

void Presentation::leave() {
    abandon();
    static_cast<void>(std::exchange(remains_, {}));
}

void Presentation::forget(const QWidget* window) {
    if (!owns(window)) return;
    // It is on its way out already.
    static_cast<void>(window_.release());
    abandon();
}

void Presentation::layOut() {
    if (!window_) return;
    // Its controller may answer by closing the window.
    const auto entries = stack_;
    for (const auto& entry : entries) {
        if (window_ && entry.controller->isViewLoaded()) entry.controller->view()->resize(window_->size());
    }
}

void Presentation::begin(Motion motion) {
    motion.start = platform::Clock::current()->now();
    motion_ = std::move(motion);
    const auto next = [generation = ++generation_] { instance().stepIfStill(generation); };
    if (motion_->animated)
        Queue::after(kStep, next);
    else
        Queue::async(next);
}

void Presentation::stepIfStill(unsigned generation) {
    if (generation_ == generation) step();
}

void Presentation::step() {
    const auto passed = platform::Clock::current()->now() - motion_->start;
    const auto part = std::chrono::duration<double>(passed) / kDuration;
    // Before its start is when somebody has set the clock back.
    if (!motion_->animated || part < 0.0 || part >= 1.0) return end();
    const double shown = motion_->up ? eased(part) : 1.0 - eased(part);
    place(shown);
    Queue::after(kStep, [generation = generation_] { instance().stepIfStill(generation); });
}

void Presentation::place(double shown) {
    const int below = static_cast<int>(std::lround((1.0 - shown) * window_->height()));
    for (const auto& controller : motion_->moving) controller->view()->move(0, below);
}

void Presentation::end() {
    // What goes is held until everybody was told.
    auto motion = *std::exchange(motion_, std::nullopt);
    const auto closed = closed_;
    Controller appears;
    if (motion.up) {
        appears = stack_.back().controller;
        appears->view()->move(0, 0);
    } else {
        appears = takeAway(motion.moving);
    }
    if (stack_.empty()) window_.reset();
    if (appears) platform::callOut("a view controller", [&] { appears->viewDidAppear(motion.animated); });
    if (closed == closed_ && motion.completion)
        platform::callOut("a presentation's completion", motion.completion);
    while (!motion.moving.empty()) motion.moving.pop_back();
    runWaiting();
}

Presentation::Controller Presentation::takeAway(const std::vector<Controller>& gone) {
    const auto top = stack_.back().controller;
    for (const auto& controller : gone) {
        std::erase_if(stack_, [&](const Entry& entry) { return entry.controller == controller; });
        controller->view()->hide();
        controller->view()->setParent(nullptr);
    }
    return !stack_.empty() && stack_.back().controller != top ? stack_.back().controller : nullptr;
}

}  // namespace velmora::screen
