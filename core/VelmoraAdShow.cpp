// The half of the handle that shows.

#include "core/ApplicationCalls.h"
#include "core/ShowBooks.h"
#include "core/ShowStart.h"
#include "log/VLLog.h"
#include "model/VLAdSuggestion.h"
#include "model/VLDirectCreativeModel.h"
#include "model/VelmoraAdState.h"

#include <velmora/VelmoraAd.h>

namespace velmora {

void VelmoraAd::showWithOptions(const std::shared_ptr<VLAdShowOptions>& options) {
    if (!ApplicationCalls::areOpen()) return VLLog("The library is shut down: no ad is shown");
    if (!isValid()) return VLLog("Ad is Expired/Invalid");
    const auto ad = state_->mAd.get();
    if (ad && (!ad->creative || !ad->creative->isSupported()))
        return VLLog("Ad type is not supported with this version of sdk.");
    const auto self = weak_from_this().lock();
    if (!self) return VLLog("An ad is shown only while a shared pointer holds its handle");
    const auto start = ShowStart::get();
    if (start == nullptr) return VLLog("This application has nothing that could show an ad");
    if (ad) ad->reportAdIsDoing();
    start(self, ad, options, std::make_shared<ShowBooks>(self));
}

}  // namespace velmora
