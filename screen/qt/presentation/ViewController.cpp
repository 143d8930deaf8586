#include "screen/ViewController.h"

#include "platform/CallOut.h"
#include "platform/Immortal.h"
#include "screen/qt/presentation/Presentation.h"

#include <algorithm>
#include <utility>

#include <QCoreApplication>
#include <QHideEvent>
#include <QWidget>

namespace velmora::screen {

struct ViewController::State {
    /// Tells its controller of its size.
    class View final : public QWidget {
    public:
        explicit View(ViewController& controller) : controller_(controller) {}

    private:
        void resizeEvent(QResizeEvent*) override { layOut(); }

        // One that comes back in the size that it had is not resized.
        void showEvent(QShowEvent*) override {
            if (!isLaidOut_) layOut();
        }

        void hideEvent(QHideEvent* event) override {
            if (!event->spontaneous()) isLaidOut_ = false;
        }

        void layOut() {
            isLaidOut_ = true;
            platform::callOut("a view controller", [&] { controller_.viewDidLayoutSubviews(); });
        }

        ViewController& controller_;
        bool isLaidOut_ = false;
    };

    std::unique_ptr<View> view;
    std::vector<std::shared_ptr<ViewController>> children;
    /// Takes itself out of here when it goes.
    ViewController* parent = nullptr;
};

ViewController::ViewController() : state_(std::make_unique<State>()) {}

ViewController::~ViewController() {
    const bool hasApplication = QCoreApplication::instance() != nullptr;
    // A child's view belongs to the child.
    for (const auto& child : state_->children) {
        child->state_->parent = nullptr;
        if (hasApplication && child->isViewLoaded()) child->view()->setParent(nullptr);
    }
    auto& view = state_->view;
    if (!view) return;
    if (hasApplication) {
        view->setParent(nullptr);
        return;
    }
    // Its application took its window, and Qt deletes no widget any more.
    static platform::Immortal<std::vector<std::unique_ptr<QWidget>>> left;
    left->push_back(std::move(view));
}

QWidget* ViewController::view() {
    if (!state_->view) {
        state_->view = std::make_unique<State::View>(*this);
        platform::callOut("a view controller", [this] { viewDidLoad(); });
    }
    return state_->view.get();
}

bool ViewController::isViewLoaded() const { return state_->view != nullptr; }

void ViewController::presentViewController(const std::shared_ptr<ViewController>& controller, bool animated,
                                           Completion completion) {
    Presentation::instance().present(weak_from_this(), controller, animated, std::move(completion));
}

void ViewController::dismissViewControllerAnimated(bool animated, Completion completion) {
    Presentation::instance().dismiss(weak_from_this(), animated, std::move(completion));
}

std::shared_ptr<ViewController> ViewController::presentingViewController() const {
    auto presenter = Presentation::instance().presenterOf(*this);
    for (auto one = parentViewController(); !presenter && one; one = one->parentViewController())
        presenter = Presentation::instance().presenterOf(*one);
    return presenter;
}

std::shared_ptr<ViewController> ViewController::presentedViewController() const {
    auto presented = Presentation::instance().presentedBy(*this);
    for (auto one = parentViewController(); !presented && one; one = one->parentViewController())
        presented = Presentation::instance().presentedBy(*one);
    return presented;
}

std::shared_ptr<ViewController> ViewController::parentViewController() const {
    return state_->parent != nullptr ? state_->parent->weak_from_this().lock() : nullptr;
}

void ViewController::removeFromParentViewController() {
    auto* parent = std::exchange(state_->parent, nullptr);
    if (parent == nullptr) return;
    if (isViewLoaded()) view()->setParent(nullptr);
    // The last thing, because it may be what keeps this one.
    std::erase(parent->state_->children, shared_from_this());
}

std::uint32_t ViewController::supportedInterfaceOrientations() const { return InterfaceOrientationMask::all; }

void ViewController::viewDidAppear(bool animated) {
    for (const auto& child : std::vector(state_->children)) {
        if (child->isViewLoaded() && child->view()->isVisible()) child->viewDidAppear(animated);
    }
}

void ViewController::addChildViewController(const std::shared_ptr<ViewController>& child) {
    if (!child || child.get() == this) return;
    child->removeFromParentViewController();
    child->state_->parent = this;
    state_->children.push_back(child);
}

void ViewController::showOnly(const std::shared_ptr<ViewController>& shown) {
    for (const auto& child : state_->children) {
        if (child != shown && child->isViewLoaded()) child->view()->setParent(nullptr);
    }
    auto* childView = shown->view();
    childView->setParent(view());
    childView->setGeometry(view()->rect());
    childView->show();
}

const std::vector<std::shared_ptr<ViewController>>& ViewController::childViewControllers() const {
    return state_->children;
}

}  // namespace velmora::screen
