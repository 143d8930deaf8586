#include "model/VLSkipStarPercentageModel.h"

#include "model/Schema.h"

namespace velmora {

const Schema& VLSkipStarPercentageModel::schema() const {
    static constexpr Field fields[]{
        mappedInteger<&VLSkipStarPercentageModel::skipStartPercentageType>("type", "skipStartPercentageType"),
        plain<&VLSkipStarPercentageModel::skipStartPercentage>("skipStartPercentage"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora
