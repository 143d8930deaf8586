#pragma once

#include <memory>
#include <string>

namespace velmora::platform {

class ViewController;

/// The application that hosts the library. Main thread only.
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

    /// Whether the desktop has a program for the URL's scheme. False for what is no URL.
    [[nodiscard]] static bool canOpenUrl(const std::string& url);

    /// Opens it with that program, without a shell, and returns before it is open. What fails is logged.
    static void openUrl(const std::string& url);
};

}  // namespace velmora::platform
