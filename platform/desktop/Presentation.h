#pragma once

#include "platform/ViewController.h"

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QWidget;

namespace velmora::platform {

/// The window over the whole screen and the controllers in it, from the bottom to the top. What is asked for
/// while something moves waits for its end. Main thread only.
class Presentation {
public:
    using Controller = std::shared_ptr<ViewController>;
    using Completion = ViewController::Completion;

    [[nodiscard]] static Presentation& instance();

    Presentation();
    ~Presentation();
    Presentation(const Presentation&) = delete;
    Presentation& operator=(const Presentation&) = delete;

    void present(const std::weak_ptr<ViewController>& from, const Controller& controller, bool animated,
                 Completion completion);
    void dismiss(const std::weak_ptr<ViewController>& from, bool animated, Completion completion);

    /// Who presents this very controller, and whom it presents; null for nobody.
    [[nodiscard]] Controller presenterOf(const ViewController& controller) const;
    [[nodiscard]] Controller presentedBy(const ViewController& controller) const;

    /// The window was closed, or goes with the application: all is dismissed, and nobody is told.
    void abandon();

    /// The window's size has changed.
    void layOut();

    [[nodiscard]] bool owns(const QWidget* window) const;

private:
    class Window;

    struct Entry {
        Controller controller;
        /// An application's own root controller need not outlive what it presents.
        std::weak_ptr<ViewController> presenter;
    };

    struct Motion {
        /// What moves: the view of the first one from here to the top.
        std::size_t first;
        bool up;
        bool animated;
        std::chrono::system_clock::time_point start;
        Completion completion;
    };

    void runOrWait(std::function<void()> operation);
    void runWaiting();
    void presentNow(const std::weak_ptr<ViewController>& from, const Controller& controller, bool animated,
                    Completion completion);
    void dismissNow(const std::weak_ptr<ViewController>& from, bool animated, Completion completion);
    [[nodiscard]] bool isOnScreen(const Controller& controller) const;
    /// Where the controller that this one, or the nearest of its ancestors, presents stands in the stack; or
    /// else where it stands itself.
    [[nodiscard]] std::optional<std::size_t> toDismiss(const Controller& from) const;
    [[nodiscard]] std::optional<std::size_t> indexOf(const ViewController& controller) const;
    void openWindow();

    void begin(Motion motion);
    void step();
    void end();
    void place(double shown);

    std::unique_ptr<Window> window_;
    std::vector<Entry> stack_;
    std::deque<std::function<void()>> waiting_;
    std::optional<Motion> motion_;
    /// Of the motion in progress, so that steps of an abandoned one do nothing.
    unsigned generation_ = 0;
};

}  // namespace velmora::platform
