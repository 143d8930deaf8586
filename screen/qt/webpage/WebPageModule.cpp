#include "screen/qt/webpage/WebPageModule.h"

#include "screen/qt/webpage/EngineConditions.h"
#include "screen/qt/webpage/WebPage.h"

namespace velmora::webpage {

screen::PageModule::Made WebPageModule::makePage() {
    if (auto reason = whyTheEngineCannotStart()) return {nullptr, std::move(*reason)};
    return {std::make_unique<WebPage>(), {}};
}

}  // namespace velmora::webpage
