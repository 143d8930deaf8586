#pragma once

#include "device/VLUserExtraInfoModel.h"

#include <memory>

namespace velmora {

/// Opens from inside what this version of the library keeps shut, for tools and tests: with a first shared
/// description of device and user there, every call makes a new one.
class VLUserExtraInfoModelGate {
public:
    VLUserExtraInfoModelGate() = delete;

    static void open() {
        VLUserExtraInfoModel::sharedInstance().set(std::make_shared<VLUserExtraInfoModel>());
    }

    static void shut() { VLUserExtraInfoModel::sharedInstance().set(nullptr); }
};

}  // namespace velmora
