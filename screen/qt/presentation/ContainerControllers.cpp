#include "screen/ViewController.h"

#include <QWidget>

namespace velmora::screen {

NavigationController::NavigationController(const std::shared_ptr<ViewController>& root) {
    addChildViewController(root);
}

const std::vector<std::shared_ptr<ViewController>>& NavigationController::viewControllers() const {
    return childViewControllers();
}

void NavigationController::pushViewController(const std::shared_ptr<ViewController>& controller) {
    addChildViewController(controller);
    if (isViewLoaded()) showOnly(viewControllers().back());
}

std::uint32_t NavigationController::supportedInterfaceOrientations() const {
    return viewControllers().empty() ? ViewController::supportedInterfaceOrientations()
                                     : viewControllers().back()->supportedInterfaceOrientations();
}

void NavigationController::viewDidLoad() {
    if (!viewControllers().empty()) showOnly(viewControllers().back());
}

void NavigationController::viewDidLayoutSubviews() {
    if (!viewControllers().empty()) viewControllers().back()->view()->setGeometry(view()->rect());
}

TabBarController::TabBarController(const std::vector<std::shared_ptr<ViewController>>& controllers) {
    for (const auto& controller : controllers) addChildViewController(controller);
}

const std::vector<std::shared_ptr<ViewController>>& TabBarController::viewControllers() const {
    return childViewControllers();
}

std::shared_ptr<ViewController> TabBarController::selectedViewController() const {
    return selected_ < viewControllers().size() ? viewControllers()[selected_] : nullptr;
}

void TabBarController::setSelectedIndex(std::size_t index) {
    if (index >= viewControllers().size()) return;
    selected_ = index;
    if (isViewLoaded()) showOnly(selectedViewController());
}

std::uint32_t TabBarController::supportedInterfaceOrientations() const {
    const auto selected = selectedViewController();
    return selected ? selected->supportedInterfaceOrientations()
                    : ViewController::supportedInterfaceOrientations();
}

void TabBarController::viewDidLoad() {
    if (const auto selected = selectedViewController()) showOnly(selected);
}

void TabBarController::viewDidLayoutSubviews() {
    if (const auto selected = selectedViewController()) selected->view()->setGeometry(view()->rect());
}

}  // namespace velmora::screen
