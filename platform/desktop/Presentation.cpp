#include "platform/desktop/Presentation.h"

#include "platform/Application.h"
#include "platform/CallOut.h"
#include "platform/Clock.h"
#include "platform/Immortal.h"
#include "platform/Log.h"
#include "platform/MainQueue.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QApplication>
#include <QCloseEvent>
#include <QPalette>
#include <QScreen>
#include <QWidget>

namespace velmora::platform {

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

}  // namespace

/// Covers the screen; black where no view lies.
class Presentation::Window final : public QWidget {
public:
    Window() : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint) {
        auto black = palette();
        black.setColor(QPalette::Window, Qt::black);
        setPalette(black);
        setAutoFillBackground(true);
    }

private:
    void closeEvent(QCloseEvent* event) override {
        event->accept();
        // Not at once: this is the window's own event.
        MainQueue::async([] { Presentation::instance().abandon(); });
    }

    void resizeEvent(QResizeEvent*) override { Presentation::instance().layOut(); }
};

Presentation::Presentation() = default;

Presentation::~Presentation() = default;

Presentation& Presentation::instance() {
    static Immortal<Presentation> instance;
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

void Presentation::runOrWait(std::function<void()> operation) {
    if (motion_ || !waiting_.empty()) return waiting_.push_back(std::move(operation));
    operation();
}

void Presentation::runWaiting() {
    while (!motion_ && !waiting_.empty()) {
        const auto operation = std::move(waiting_.front());
        waiting_.pop_front();
        operation();
    }
}

void Presentation::presentNow(const std::weak_ptr<ViewController>& from, const Controller& controller,
                              bool animated, Completion completion) {
    const auto presenter = from.lock();
    if (!presenter || !controller || indexOf(*controller)) return;
    if (qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr)
        return log("Nothing can be presented: the application has no QApplication");
    if (!isOnScreen(presenter))
        return log("Nothing is presented from a controller that is not on the screen");

    if (!window_) openWindow();
    // Above all that is there: what the presenter presents already stays under it.
    const bool presentsAlready = presentedBy(*presenter) != nullptr;
    stack_.push_back({controller, presentsAlready ? stack_.back().controller : presenter});
    auto* view = controller->view();
    view->setParent(window_.get());
    view->setGeometry(window_->rect());
    begin({.first = stack_.size() - 1,
           .up = true,
           .animated = animated,
           .start = {},
           .completion = std::move(completion)});
    view->show();
    view->raise();
}

void Presentation::dismissNow(const std::weak_ptr<ViewController>& from, bool animated,
                              Completion completion) {
    const auto controller = from.lock();
    const auto first = controller ? toDismiss(controller) : std::nullopt;
    if (!first) return;
    begin({.first = *first,
           .up = false,
           .animated = animated,
           .start = {},
           .completion = std::move(completion)});
}

bool Presentation::isOnScreen(const Controller& controller) const {
    const auto* top = topAncestor(controller);
    if (indexOf(*top)) return true;
    const auto root = Application::rootViewController();
    return root && top == topAncestor(root);
}

std::optional<std::size_t> Presentation::indexOf(const ViewController& controller) const {
    const auto found = std::find_if(stack_.begin(), stack_.end(), [&](const Entry& entry) {
        return entry.controller.get() == &controller;
    });
    if (found == stack_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - stack_.begin());
}

std::optional<std::size_t> Presentation::toDismiss(const Controller& from) const {
    for (auto one = from; one; one = one->parentViewController()) {
        if (const auto presented = presentedBy(*one)) return indexOf(*presented);
    }
    for (auto one = from; one; one = one->parentViewController()) {
        if (const auto index = indexOf(*one)) return index;
    }
    return std::nullopt;
}

Presentation::Controller Presentation::presenterOf(const ViewController& controller) const {
    const auto index = indexOf(controller);
    return index ? stack_[*index].presenter.lock() : nullptr;
}

Presentation::Controller Presentation::presentedBy(const ViewController& controller) const {
    for (const auto& entry : stack_) {
        if (entry.presenter.lock().get() == &controller) return entry.controller;
    }
    return nullptr;
}

void Presentation::openWindow() {
    static const QCoreApplication* known = nullptr;
    if (known != QCoreApplication::instance()) {
        known = QCoreApplication::instance();
        qAddPostRoutine([] {
            known = nullptr;
            instance().abandon();
        });
    }
    window_ = std::make_unique<Window>();
    if (const auto* screen = QGuiApplication::primaryScreen()) window_->setGeometry(screen->geometry());
    window_->showFullScreen();
    window_->activateWindow();
}

void Presentation::abandon() {
    ++generation_;
    motion_.reset();
    waiting_.clear();
    // What goes may ask for more on its way.
    auto stack = std::exchange(stack_, {});
    const auto window = std::exchange(window_, nullptr);
    for (const auto& entry : stack) {
        if (entry.controller->isViewLoaded()) entry.controller->view()->setParent(nullptr);
    }
    while (!stack.empty()) stack.pop_back();
}

void Presentation::layOut() {
    if (!window_) return;
    for (const auto& entry : stack_) entry.controller->view()->resize(window_->size());
    if (!motion_) {
        for (const auto& entry : stack_) entry.controller->view()->move(0, 0);
    }
}

void Presentation::begin(Motion motion) {
    motion.start = Clock::current()->now();
    motion_ = std::move(motion);
    place(motion_->up ? 0 : 1);
    const auto generation = ++generation_;
    const auto next = [generation] {
        auto& self = instance();
        if (self.generation_ == generation) self.step();
    };
    motion_->animated ? MainQueue::after(kStep, next) : MainQueue::async(next);
}

void Presentation::step() {
    const auto passed = Clock::current()->now() - motion_->start;
    const auto part = motion_->animated ? std::chrono::duration<double>(passed) / kDuration : 1.0;
    if (part >= 1.0) return end();
    const double shown = motion_->up ? eased(part) : 1.0 - eased(part);
    place(shown);
    MainQueue::after(kStep, [generation = generation_] {
        auto& self = instance();
        if (self.generation_ == generation) self.step();
    });
}

void Presentation::place(double shown) {
    const int below = static_cast<int>(std::lround((1.0 - shown) * window_->height()));
    for (auto index = motion_->first; index < stack_.size(); ++index)
        stack_[index].controller->view()->move(0, below);
}

void Presentation::end() {
    const auto motion = *std::exchange(motion_, std::nullopt);
    const auto generation = generation_;
    // Held until everybody was told.
    std::vector<Entry> gone;
    Controller appears;
    if (motion.up) {
        appears = stack_.back().controller;
        appears->view()->move(0, 0);
    } else {
        gone.assign(std::make_move_iterator(stack_.begin() + static_cast<std::ptrdiff_t>(motion.first)),
                    std::make_move_iterator(stack_.end()));
        stack_.resize(motion.first);
        for (const auto& entry : gone) {
            entry.controller->view()->hide();
            entry.controller->view()->setParent(nullptr);
        }
        if (!stack_.empty()) appears = stack_.back().controller;
    }
    if (stack_.empty()) window_.reset();
    if (appears) callOut("a view controller", [&] { appears->viewDidAppear(motion.animated); });
    if (motion.completion) callOut("a presentation's completion", motion.completion);
    while (!gone.empty()) gone.pop_back();
    if (generation == generation_) runWaiting();
}

}  // namespace velmora::platform
