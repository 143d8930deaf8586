// A show runs in the application, on the thread of its QApplication.

#include "core/ShowStart.h"
#include "log/VLLog.h"
#include "model/VelmoraAdState.h"
#include "screen/Application.h"
#include "screen/Queue.h"
#include "ui/VLAdShowUIController.h"

namespace velmora::screen {

namespace {

void show(const std::shared_ptr<VelmoraAd>& ad, const std::shared_ptr<VLAdSuggestion>& suggestion,
          const std::shared_ptr<VLAdShowOptions>& options, const std::shared_ptr<ShowEvents>& events) {
    Queue::async([ad, suggestion, options, events] {
        if (!Application::hasScreen()) return VLLog("An ad is shown only in a QApplication");
        std::make_shared<VLAdShowUIController>(events)->showAd(ad, suggestion, options,
                                                               ad->getRequestOptions());
    });
}

[[maybe_unused]] const bool isSet = [] {
    ShowStart::set(&show);
    return true;
}();

}  // namespace

}  // namespace velmora::screen
