#include "net/VLRequestHeaders.h"

#include "device/VLBuildVariants.h"
#include "device/VLDeviceAppInfo.h"
#include "platform/Bundle.h"
#include "platform/Clock.h"
#include "platform/Reachability.h"
#include "platform/Value.h"
#include "store/VLDefaults.h"

#include <boost/locale/encoding_utf.hpp>

namespace velmora {

namespace {

constexpr const char* kSecretToken = "480726";
/// A public name server that is always there.
constexpr const char* kReachabilityTarget = "9.9.9.9";

/// Identifies the device, the application and its key at once.
std::string fingerprint(const std::optional<std::string>& bundleIdentifier,
                        const std::optional<std::string>& appKey) {
    return platform::formatted(VLDeviceAppInfo::deviceIdentifier()) + platform::formatted(bundleIdentifier) +
           VLRequestHeaders::randomIntForString(appKey) + "direct";
}

}  // namespace

VLHeaders VLRequestHeaders::getHeaders() {
    const auto now = platform::nowInMilliseconds();
    const auto bundleIdentifier = platform::Bundle::main().identifier();
    const auto appKey = VLDefaults::getDeveloperKey();
    const auto authorization = VLDefaults::getAuthorization();

    VLHeaders headers;
    const auto set = [&](const char* name, const std::optional<std::string>& value) {
        if (value) headers.emplace_back(name, *value);
    };
    set("sdk-version", VLBuildVariants::getVersion());
    set("sdk-type", "video-sdk");
    set("dev-platform", VLBuildVariants::getDevelopmentPlatformName());
    set("developer-key", appKey);
    set("device-model", VLDeviceAppInfo::deviceModel());
    set("device-imei", fingerprint(bundleIdentifier, appKey));
    set("device-os", VLDeviceAppInfo::deviceOS());
    set("device-os-version", VLDeviceAppInfo::deviceOSVersion());
    set("device-client-date", std::to_string(now));
    set("app-package-name", bundleIdentifier);
    set("secret-token", kSecretToken);
    set("t-user-id", VLDefaults::getVelmoraUserId());
    set("authorization", authorization ? std::optional("bearer " + *authorization) : std::nullopt);
    set("customer-user-id", VLDefaults::getAppUserId());
    return headers;
}

std::string VLRequestHeaders::randomIntForString(const std::optional<std::string>& string) {
    std::int64_t sum = 0;
    if (string) {
        for (const char16_t unit : boost::locale::conv::utf_to_utf<char16_t>(*string)) {
            sum += unit;
            if (unit >= u'0' && unit <= u'9') sum += unit - u'0';
        }
    }
    return std::to_string(sum);
}

std::string VLRequestHeaders::connectionType() {
    using platform::Reachability;
    const auto flags = Reachability::flags(kReachabilityTarget);
    if (!flags) return "none";
    if ((*flags & Reachability::kReachable) == 0 || (*flags & Reachability::kConnectionRequired) != 0)
        return "none";
    return (*flags & Reachability::kCellular) != 0 ? "data" : "wifi";
}

}  // namespace velmora
