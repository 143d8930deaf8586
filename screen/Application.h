#pragma once

#include <memory>

namespace velmora::screen {

class ViewController;

/// The application whose windows an ad lies over. Only on the thread of what is seen.
class Application {
public:
    Application() = delete;

    /// Whether there is an application that widgets can be shown in: none of ours may be made without it.
    [[nodiscard]] static bool hasScreen();

    /// The controller of the application's active window, or of another visible one when none is active; made
    /// on first use, and the same one for the same window. Null when the application shows no window, unless
    /// one was set.
    [[nodiscard]] static std::shared_ptr<ViewController> rootViewController();

    /// For applications and tests with controllers of their own; null goes back to the active window's.
    static void setRootViewController(std::shared_ptr<ViewController> controller);
};

}  // namespace velmora::screen
