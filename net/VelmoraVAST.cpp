#include <velmora/VelmoraVAST.h>

#include "device/VLBuildVariants.h"
#include "device/VLDeviceAppInfo.h"
#include "device/VLUserExtraInfoModel.h"
#include "log/VLLog.h"
#include "net/VLRequestHeaders.h"
#include "net/VLWebServices.h"
#include "platform/CallOut.h"
#include "platform/OneWait.h"
#include "platform/UrlText.h"
#include "store/VLDefaults.h"

#include <algorithm>
#include <initializer_list>

namespace velmora {

namespace {

/// Absent for a number that has no name: the choice is then the service's.
template <class Name>
std::optional<std::string> textOf(int number, std::initializer_list<Name> names) {
    const bool hasName = std::find(names.begin(), names.end(), static_cast<Name>(number)) != names.end();
    return hasName ? std::optional(std::to_string(number)) : std::nullopt;
}

/// What the service is told in the query, without the headers.
Dictionary parametersFor(const std::string& key, int type, int version) {
    using Info = VLUserExtraInfoModel;
    const auto info = Info::getInstance();
    const auto model = VLDeviceAppInfo::deviceModel();

    Dictionary parameters;
    const auto set = [&](const char* name, const std::optional<std::string>& value) {
        if (value) parameters[name] = *value;
    };
    set("secretKey", key);
    set("targetPlatform", "2");
    set("osVersion", VLDeviceAppInfo::deviceOSVersion());
    set("sdkVersion", VLBuildVariants::getVersion());
    set("sdkType", "video-sdk");
    set("deviceModel", model);
    set("osId", VLDeviceAppInfo::deviceIdentifier());
    set("osAdvertisingId", VLDeviceAppInfo::advertisingIdentifier());
    set("vastVersion", textOf(version, {VLVastVersion::v2, VLVastVersion::v3}));
    set("appVersion", Info::textOf(info, &Info::appVersion));
    set("deviceBrand", Info::textOf(info, &Info::deviceBrand));
    set("deviceLanguage", Info::textOf(info, &Info::deviceLanguage));
    set("deviceManufacturer", Info::textOf(info, &Info::deviceManufacturer));
    set("mcc", Info::formatted(info, &Info::mcc));
    set("mnc", Info::formatted(info, &Info::mnc));
    // The service takes the model for all four.
    set("screenDensity", model);
    set("screenHeight", model);
    set("screenOrientation", model);
    set("screenWidth", model);
    set("prerollType", textOf(type, {VLPrerollType::notSkippable, VLPrerollType::skippable}));
    set("t-user-id", VLDefaults::getVelmoraUserId());
    return parameters;
}

std::string queryOf(const Dictionary& parameters) {
    std::vector<platform::UrlQueryItem> items;
    for (const auto& [name, value] : parameters) items.push_back({name, std::string(value.as_string())});
    return platform::encodedQuery(items);
}

std::optional<std::string> urlFor(const std::optional<std::string>& zone, int type, int version) {
    const auto key = VLDefaults::getDeveloperKey();
    if (!key) {
        VLLog("Velmora must be initialized before requesting ad");
        return std::nullopt;
    }
    auto parameters = parametersFor(*key, type, version);
    for (const auto& [name, value] : VLRequestHeaders::getHeaders()) parameters[name] = value;
    return VLWebServices::getVastUrlForZone(zone) + '?' + queryOf(parameters);
}

}  // namespace

std::optional<std::string> VelmoraVAST::getVastUrlForZone(const std::optional<std::string>& zone,
                                                          int withType, int ofVastVersion) {
    const platform::OneWait wait;
    std::optional<std::string> url;
    platform::callOut("making a VAST URL", [&] { url = urlFor(zone, withType, ofVastVersion); });
    return url;
}

}  // namespace velmora
