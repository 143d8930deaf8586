#pragma once

#include "screen/ViewController.h"

#include <map>
#include <memory>

class QWidget;

namespace velmora::screen {

/// The controllers of the application's own windows, one for each, and the one that was set in their place.
/// Main thread only.
class RootControllers {
public:
    using Controller = std::shared_ptr<ViewController>;

    [[nodiscard]] static RootControllers& instance();

    /// That of the window in front; null without a window.
    [[nodiscard]] Controller current();
    /// Null goes back to those of the windows.
    void set(Controller controller);

    /// Whether it stands for a window that there is, or was set.
    [[nodiscard]] bool has(const ViewController& controller) const;

    /// The application's window in front; null for none.
    [[nodiscard]] QWidget* window() const;

private:
    class WindowController;

    Controller set_;
    std::map<const QWidget*, std::shared_ptr<WindowController>> ofWindows_;
    /// The window in front when it was last asked for.
    std::weak_ptr<WindowController> last_;
};

}  // namespace velmora::screen
