#include "model/VLActionModel.h"

#include "model/Schema.h"

namespace velmora {

const Schema& VLActionModel::schema() const {
    static constexpr Field fields[]{
        mappedInteger<&VLActionModel::actionType>("type", "actionType"),
        plain<&VLActionModel::actionUrl>("actionUrl"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora
