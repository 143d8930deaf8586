#include "model/VLCrashReportRequestModel.h"

#include "model/Schema.h"

namespace velmora {

const Schema& VLCrashReportRequestModel::schema() const {
    static constexpr Field fields[]{
        plain<&VLCrashReportRequestModel::bundleIdentifier>("bundleIdentifier"),
        plain<&VLCrashReportRequestModel::velmoraSDKVersion_>("velmoraSDKVersion"),
        plain<&VLCrashReportRequestModel::os>("os"),
        plain<&VLCrashReportRequestModel::osVersion_>("osVersion"),
        plain<&VLCrashReportRequestModel::device>("device"),
        plain<&VLCrashReportRequestModel::deviceModel>("deviceModel"),
        plain<&VLCrashReportRequestModel::deviceManufacturer>("deviceManufacturer"),
        plain<&VLCrashReportRequestModel::content_>("content"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora
