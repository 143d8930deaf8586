#include "device/VLDeviceAppInfo.h"

#include "device/VLMD5.h"
#include "platform/Bundle.h"
#include "platform/Device.h"
#include "platform/Value.h"

namespace velmora {

std::optional<std::string> VLDeviceAppInfo::deviceModel() { return platform::Device::machine(); }

std::optional<std::string> VLDeviceAppInfo::deviceIdentifier() {
    const auto vendor = platform::Device::identifierForVendor();
    if (!vendor) return std::nullopt;
    return *vendor + "-" + platform::formatted(VLMD5(platform::Bundle::main().identifier()));
}

std::optional<std::string> VLDeviceAppInfo::advertisingIdentifier() {
    return platform::Device::advertisingIdentifier();
}

std::string VLDeviceAppInfo::deviceOS() { return "ios"; }

std::string VLDeviceAppInfo::deviceOSVersion() { return "22"; }

}  // namespace velmora
