#pragma once

#include <string>

namespace velmora::platform {

/// What the application may ask of the desktop that it runs on. Safe to call from any thread.
class Application {
public:
    Application() = delete;

    /// Whether the desktop has a program for the URL's scheme. False for what is no URL.
    [[nodiscard]] static bool canOpenUrl(const std::string& url);

    /// Opens it with that program, without a shell, and returns before it is open. What fails is logged.
    static void openUrl(const std::string& url);
};

}  // namespace velmora::platform
