#include "model/VLAdRequestOptionsState.h"

#include "model/Schema.h"

namespace velmora {

const Schema& VLAdRequestOptionsState::schema() const {
    static constexpr Field fields[]{
        plain<&VLAdRequestOptionsState::mCacheType>("mCacheType"),
    };
    static constexpr Schema table(fields, Schema::Listed::all);
    return table;
}

template <>
std::shared_ptr<VLAdRequestOptions> recordFrom<VLAdRequestOptions>(Dictionary* dictionary) {
    auto options = std::make_shared<VLAdRequestOptions>();
    options->state().setValuesForKeysWithDictionary(dictionary);
    return options;
}

}  // namespace velmora
