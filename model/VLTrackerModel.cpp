#include "model/VLTrackerModel.h"

#include "model/Schema.h"

namespace velmora {

VLTrackerModel::VLTrackerModel(std::int64_t withType, const std::optional<std::string>& andCustomUrl)
    : type(withType), customAppUrl(platform::boxed(andCustomUrl)) {}

const Schema& VLTrackerModel::schema() const {
    static constexpr Field fields[]{
        plain<&VLTrackerModel::type>("type"),
        plain<&VLTrackerModel::customAppUrl>("customAppUrl"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora
