#pragma once

#include "model/VLSerializedModel.h"

namespace velmora {

/// The body of a crash report. No part of the library makes one.
class VLCrashReportRequestModel final : public VLSerializedModel {
public:
    Property bundleIdentifier;
    Property os;
    Property device;
    Property deviceModel;
    Property deviceManufacturer;

    /// These three are set only by reading a dictionary.
    [[nodiscard]] const Property& getVelmoraSDKVersion() const { return velmoraSDKVersion_; }

    [[nodiscard]] const Property& getOsVersion() const { return osVersion_; }

    [[nodiscard]] const Property& getContent() const { return content_; }

private:
    [[nodiscard]] const Schema& schema() const override;

    Property velmoraSDKVersion_;
    Property osVersion_;
    Property content_;
};

}  // namespace velmora
