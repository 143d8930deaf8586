#include "model/VLVibrationPattern.h"

#include "model/Schema.h"

namespace velmora {

VLVibrationPattern::VLVibrationPattern(Property startMomentInSeconds, Property andPattern)
    : vibrationStartMomentInSeconds(std::move(startMomentInSeconds)), pattern(std::move(andPattern)) {}

const Schema& VLVibrationPattern::schema() const {
    static constexpr Field fields[]{
        plain<&VLVibrationPattern::vibrationStartMomentInSeconds>("vibrationStartMomentInSeconds"),
        plain<&VLVibrationPattern::pattern>("pattern"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora
