#pragma once

#include <optional>
#include <string>

namespace velmora {

/// Single facts of the device, for headers and addresses. Any thread.
class VLDeviceAppInfo {
public:
    VLDeviceAppInfo() = delete;

    [[nodiscard]] static std::optional<std::string> deviceModel();

    /// The vendor identifier, "-", and the MD5 digest of the application's identifier. Absent without the
    /// former.
    [[nodiscard]] static std::optional<std::string> deviceIdentifier();

    [[nodiscard]] static std::optional<std::string> advertisingIdentifier();

    /// Both are fixed values, not those of the running system.
    [[nodiscard]] static std::string deviceOS();
    [[nodiscard]] static std::string deviceOSVersion();
};

}  // namespace velmora
