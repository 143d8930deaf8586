#include "model/VLResponseModel.h"

#include "model/Schema.h"

namespace velmora {

const Schema& VLResponseModel::schema() const {
    static constexpr Schema table;
    return table;
}

}  // namespace velmora
