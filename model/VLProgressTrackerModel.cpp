#include "model/VLProgressTrackerModel.h"

#include "model/Schema.h"

namespace velmora {

const Schema& VLProgressTrackerModel::schema() const {
    static constexpr Field fields[]{
        plain<&VLProgressTrackerModel::first>("first"),
        plain<&VLProgressTrackerModel::second>("second"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora
