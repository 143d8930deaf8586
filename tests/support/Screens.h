#pragma once

#include "harness/EventLoop.h"
#include "screen/Application.h"
#include "screen/ViewController.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QApplication>
#include <QWidget>
#include <gtest/gtest.h>

namespace velmora::test {

using Events = std::vector<std::string>;

/// How many screens there are.
inline int alive = 0;

/// Notes what it is told.
class Screen final : public screen::ViewController {
public:
    Screen(std::string name, Events& events) : name_(std::move(name)), events_(events) { ++alive; }
    ~Screen() override { --alive; }

    std::uint32_t mask = screen::InterfaceOrientationMask::all;
    std::function<void()> onLoad;
    std::function<void()> onAppear;

private:
    [[nodiscard]] std::uint32_t supportedInterfaceOrientations() const override { return mask; }
    void viewDidLoad() override {
        events_.push_back(name_ + " loaded");
        if (onLoad) onLoad();
    }
    void viewDidAppear(bool animated) override {
        screen::ViewController::viewDidAppear(animated);
        events_.push_back(name_ + " appeared");
        if (onAppear) onAppear();
    }
    void viewDidLayoutSubviews() override { events_.push_back(name_ + " laid out"); }

    const std::string name_;
    Events& events_;
};

class Screens : public testing::Test {
protected:
    Screens() {
        window_.resize(300, 200);
        window_.show();
        // Also where nobody gives a window the focus.
        window_.activateWindow();
    }

    ~Screens() override {
        // The window of the library is closed as a person would.
        for (auto* window : QApplication::topLevelWidgets()) {
            if (window != &window_) window->close();
        }
        window_.hide();
        EXPECT_TRUE(runUntil([] { return alive == 0; }));
    }

    std::shared_ptr<Screen> screen(const std::string& name) {
        return std::make_shared<Screen>(name, events_);
    }

    screen::ViewController::Completion note(const std::string& what) {
        return [this, what] { events_.push_back(what); };
    }

    bool heard(const std::string& what) {
        return runUntil([&] { return !events_.empty() && events_.back() == what; });
    }

    static std::shared_ptr<screen::ViewController> root() {
        return screen::Application::rootViewController();
    }

    /// Whether it stays unheard for longer than an animation takes.
    bool neverHeard(const std::string& what) {
        return !runUntil([&] { return std::find(events_.begin(), events_.end(), what) != events_.end(); },
                         std::chrono::milliseconds(400));
    }

    QWidget window_;
    Events events_;
};

}  // namespace velmora::test
