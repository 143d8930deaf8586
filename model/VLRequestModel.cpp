#include "model/VLRequestModel.h"

#include "model/Schema.h"

namespace velmora {

const Schema& VLRequestModel::schema() const {
    static constexpr Schema table;
    return table;
}

}  // namespace velmora
