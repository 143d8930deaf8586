#include "platform/desktop/webpage/WebPageModule.h"

#include "platform/desktop/webpage/EngineConditions.h"
#include "platform/desktop/webpage/WebPage.h"

namespace velmora::webpage {

platform::PageModule::Made WebPageModule::makePage() {
    if (auto reason = whyTheEngineCannotStart()) return {nullptr, std::move(*reason)};
    return {std::make_unique<WebPage>(), {}};
}

}  // namespace velmora::webpage
