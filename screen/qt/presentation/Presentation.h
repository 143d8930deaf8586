#pragma once

#include "screen/ViewController.h"

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QWidget;

namespace velmora::screen {

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

    /// The window was closed: all is dismissed, and nobody is told. What that leaves is destroyed at a later
    /// turn, because an event of one of those views may have closed the window.
    void abandon();
    /// The application object goes, and the windows with it.
    void leave();
    /// The window is being deleted, by whomever.
    void forget(const QWidget* window);

    /// The window's size has changed.
    void layOut();

    [[nodiscard]] bool owns(const QWidget* window) const;

private:
    class Window;

    struct Entry {
        Controller controller;
        /// Who goes by it must be able to dismiss this one, even when a window of the application's has gone.
        Controller presenter;
    };

    struct Motion {
        /// What moves, from the bottom to the top.
        std::vector<Controller> moving;
        bool up;
        bool animated;
        std::chrono::system_clock::time_point start;
        Completion completion;
    };

    using Operation = std::function<void()>;

    struct Remains {
        std::vector<Entry> stack;
        std::deque<Operation> waiting;
        std::optional<Motion> motion;
        std::unique_ptr<Window> window;
    };

    void runOrWait(Operation operation);
    void runWaiting();
    void presentNow(const std::weak_ptr<ViewController>& from, const Controller& controller, bool animated,
                    Completion completion);
    void dismissNow(const std::weak_ptr<ViewController>& from, bool animated, Completion completion);
    [[nodiscard]] bool isOnScreen(const Controller& controller) const;
    /// What this controller, or the nearest of its ancestors, presents, or else the one itself; each with all
    /// that was presented from there.
    [[nodiscard]] std::vector<Controller> toDismiss(const Controller& from) const;
    /// `found`, with what `presenter` presents and what is presented from any of them.
    [[nodiscard]] std::vector<Controller> withPresented(std::vector<Controller> found,
                                                        const ViewController& presenter) const;
    [[nodiscard]] std::optional<std::size_t> indexOf(const ViewController& controller) const;
    void openWindow();
    void show(const Controller& controller, bool animated);

    void begin(Motion motion);
    void stepIfStill(unsigned generation);
    void step();
    void end();
    void place(double shown);
    /// Takes what has moved away out of the stack; who is uncovered by that, if anybody.
    Controller takeAway(const std::vector<Controller>& gone);

    std::unique_ptr<Window> window_;
    std::vector<Entry> stack_;
    std::deque<Operation> waiting_;
    std::optional<Motion> motion_;
    /// Of the motion in progress, so that steps of an abandoned one do nothing.
    unsigned generation_ = 0;
    /// How often a window was closed.
    unsigned closed_ = 0;
    /// A request is being carried out; those that it causes come after it.
    bool isBusy_ = false;
    std::vector<Remains> remains_;
};

}  // namespace velmora::screen
