#include "model/VelmoraAdState.h"

#include "model/Schema.h"
#include "model/VLAdRequestOptionsState.h"
#include "model/VLAdSuggestion.h"

namespace velmora {

const Schema& VelmoraAdState::schema() const {
    static constexpr Field fields[]{
        nested<&VelmoraAdState::mAd>("mAd"),
        plain<&VelmoraAdState::cacheTime>("cacheTime"),
        plain<&VelmoraAdState::zoneId>("zoneId"),
        plain<&VelmoraAdState::isShown>("isShown"),
        plain<&VelmoraAdState::videoFilePath>("videoFilePath"),
        nested<&VelmoraAdState::requestOptions>("requestOptions"),
    };
    static constexpr Schema table(fields, Schema::Listed::all);
    return table;
}

void VelmoraAdState::setAd(const std::shared_ptr<VLSerializedModel>& ad) {
    if (auto suggestion = std::dynamic_pointer_cast<VLAdSuggestion>(ad)) mAd.set(std::move(suggestion));
}

template <>
std::shared_ptr<VelmoraAd> recordFrom<VelmoraAd>(Dictionary* dictionary) {
    auto ad = std::make_shared<VelmoraAd>();
    ad->state().setValuesForKeysWithDictionary(dictionary);
    return ad;
}

}  // namespace velmora
