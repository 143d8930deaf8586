#include "model/VLRewardResponseModel.h"

#include "model/Schema.h"

namespace velmora {

const Schema& VLRewardResponseModel::schema() const {
    static constexpr Field fields[]{
        plain<&VLRewardResponseModel::awardedCoin>("awardedCoin"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora
