#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

class QWidget;

namespace velmora::screen {

/// The interface orientations that a controller allows, as a set.
namespace InterfaceOrientationMask {
constexpr std::uint32_t portrait = 2;
constexpr std::uint32_t portraitUpsideDown = 4;
constexpr std::uint32_t landscapeRight = 8;
constexpr std::uint32_t landscapeLeft = 16;
constexpr std::uint32_t all = 30;
}  // namespace InterfaceOrientationMask

/// A screen and what drives it. Main thread only, from construction to destruction; always held by a
/// `std::shared_ptr`.
///
/// A controller alone owns its view. Presenting one keeps it alive until it has been dismissed, and a parent
/// keeps its children. The first presentation from a root controller opens a window over the whole screen;
/// what is presented from there on lies over one another in it. When that window is closed from outside, all
/// that is in it is dismissed and no completion is called.
class ViewController : public std::enable_shared_from_this<ViewController> {
public:
    using Completion = std::function<void()>;

    ViewController();
    virtual ~ViewController();
    ViewController(const ViewController&) = delete;
    ViewController& operator=(const ViewController&) = delete;

    /// Made by `loadView` on first use, which `viewDidLoad` follows. Never null; belongs to this controller.
    [[nodiscard]] QWidget* view();
    [[nodiscard]] bool isViewLoaded() const;

    /// Presents a controller over the whole screen, over whatever lies there already. One that comes while a
    /// presenter is still in an animation waits for its end. Presenting a controller that is presented
    /// already, this one or one of its ancestors, or null, does nothing; nor does presenting from one that is
    /// not on the screen, or in an application without a `QApplication`.
    ///
    /// `completion` runs once when it has appeared, that is after the animation and after `viewDidAppear`.
    void presentViewController(const std::shared_ptr<ViewController>& controller, bool animated,
                               Completion completion = {});

    /// Dismisses what this controller, or the nearest of its ancestors, presents, with all that was presented
    /// from there; one that presents nothing dismisses itself, or the nearest of its ancestors that is
    /// presented. What somebody else presented over it stays. One that neither presents nor is presented does
    /// nothing and completes nothing.
    ///
    /// `completion` runs once after the animation, when the views are gone.
    void dismissViewControllerAnimated(bool animated, Completion completion = {});

    /// Who presents this one or the nearest of its ancestors; null for nobody.
    [[nodiscard]] std::shared_ptr<ViewController> presentingViewController() const;
    /// What this one, or the nearest of its ancestors, presents; null for nothing.
    [[nodiscard]] std::shared_ptr<ViewController> presentedViewController() const;

    [[nodiscard]] std::shared_ptr<ViewController> parentViewController() const;
    /// Takes it from its parent, if it has one; its view leaves that of the parent.
    void removeFromParentViewController();

    /// A set of `InterfaceOrientationMask`. It is answered to whoever asks; nothing is rotated by the
    /// library.
    [[nodiscard]] virtual std::uint32_t supportedInterfaceOrientations() const;
    [[nodiscard]] virtual bool prefersStatusBarHidden() const { return false; }

protected:
    /// The view has been made; nothing is on the screen yet.
    virtual void viewDidLoad() {}
    /// It is on the screen, after the animation if there was one.
    virtual void viewDidAppear(bool animated);
    /// Whenever the view has got its size, and whenever it comes to the screen, before it appears.
    virtual void viewDidLayoutSubviews() {}

    /// Children of containers. A child leaves the parent it had.
    void addChildViewController(const std::shared_ptr<ViewController>& child);
    /// Of all children's views only that one is in this view, and fills it.
    void showOnly(const std::shared_ptr<ViewController>& child);
    [[nodiscard]] const std::vector<std::shared_ptr<ViewController>>& childViewControllers() const;

private:
    friend class Presentation;
    struct State;
    std::unique_ptr<State> state_;
};

/// A stack of controllers, of which the last one is seen.
class NavigationController : public ViewController {
public:
    explicit NavigationController(const std::shared_ptr<ViewController>& root);

    /// From the bottom of the stack to its top; never empty.
    [[nodiscard]] const std::vector<std::shared_ptr<ViewController>>& viewControllers() const;
    void pushViewController(const std::shared_ptr<ViewController>& controller);

    /// Those of the controller that is seen.
    [[nodiscard]] std::uint32_t supportedInterfaceOrientations() const override;

protected:
    void viewDidLoad() override;
    void viewDidLayoutSubviews() override;
};

/// Controllers side by side, of which one is selected and seen.
class TabBarController : public ViewController {
public:
    /// Selects the first one.
    explicit TabBarController(const std::vector<std::shared_ptr<ViewController>>& controllers);

    [[nodiscard]] const std::vector<std::shared_ptr<ViewController>>& viewControllers() const;
    /// Null when there are none.
    [[nodiscard]] std::shared_ptr<ViewController> selectedViewController() const;
    /// An index beyond the last one changes nothing.
    void setSelectedIndex(std::size_t index);

    [[nodiscard]] std::uint32_t supportedInterfaceOrientations() const override;

protected:
    void viewDidLoad() override;
    void viewDidLayoutSubviews() override;

private:
    std::size_t selected_ = 0;
};

}  // namespace velmora::screen
