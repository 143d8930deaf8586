// A show runs in the application, on the thread of its QApplication.

#include "core/ShowStart.h"
#include "log/VLLog.h"
#include "model/VelmoraAdState.h"
#include "platform/Immortal.h"
#include "screen/Application.h"
#include "screen/Queue.h"
#include "ui/VLAdShowUIController.h"

#include <memory>
#include <vector>

namespace velmora::screen {

namespace {

/// Those that are there, on the thread of what is seen.
std::vector<std::weak_ptr<VLAdShowUIController>>& shows() {
    static platform::Immortal<std::vector<std::weak_ptr<VLAdShowUIController>>> instance;
    return *instance;
}

void show(const std::shared_ptr<VelmoraAd>& ad, const std::shared_ptr<VLAdSuggestion>& suggestion,
          const std::shared_ptr<VLAdShowOptions>& options, const std::shared_ptr<ShowEvents>& events) {
    Queue::async([ad, suggestion, options, events] {
        if (!Application::hasScreen()) return VLLog("An ad is shown only in a QApplication");
        const auto controller = std::make_shared<VLAdShowUIController>(events);
        std::erase_if(shows(), [](const auto& one) { return one.expired(); });
        shows().push_back(controller);
        controller->showAd(ad, suggestion, options, ad->getRequestOptions());
    });
}

void endAll() {
    Queue::async([] {
        for (const auto& one : shows()) {
            const auto controller = one.lock();
            const auto navigation = controller ? controller->parentViewController() : nullptr;
            if (navigation) navigation->dismissViewControllerAnimated(false);
        }
    });
}

[[maybe_unused]] const bool isSet = [] {
    ShowStart::set(&show, &endAll);
    return true;
}();

}  // namespace

}  // namespace velmora::screen
