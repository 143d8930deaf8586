#include "device/VLUserExtraInfoModel.h"

#include "device/GeoInfo.h"
#include "device/GeoInfoLocationIOS.h"
#include "model/Schema.h"
#include "platform/Bundle.h"
#include "platform/Immortal.h"
#include "platform/Locale.h"
#include "platform/Location.h"
#include "platform/Mutex.h"
#include "platform/Screen.h"
#include "platform/Telephony.h"

#include <charconv>

namespace velmora {

namespace {

platform::Mutex VLUserExtraInfoModelLock;

constexpr double kDensityOfScale1 = 160;

/// Single precision is what the service is told.
Property single(double number) { return Property(static_cast<float>(number)); }

/// A code in decimal digits as the number that it reads as; absent for any other text.
Property numberOf(const std::optional<std::string>& code) {
    if (!code) return std::nullopt;
    std::int64_t number = 0;
    const auto* end = code->data() + code->size();
    const auto [last, error] = std::from_chars(code->data(), end, number);
    return error == std::errc() && last == end ? Property(number) : std::nullopt;
}

}  // namespace

VLUserExtraInfoModel::Slot& VLUserExtraInfoModel::sharedInstance() {
    static platform::Immortal<Slot> instance;
    return *instance;
}

std::shared_ptr<VLUserExtraInfoModel> VLUserExtraInfoModel::getInstance() {
    auto& slot = sharedInstance();
    if (!slot.get()) return nullptr;
    const platform::MutexLock lock(VLUserExtraInfoModelLock);
    if (slot.get()) {
        const auto info = std::make_shared<VLUserExtraInfoModel>();
        slot.set(info);
        info->fill();
    }
    return slot.get();
}

void VLUserExtraInfoModel::fill() {
    fillScreen();
    appVersion = platform::boxed(platform::Bundle::main().version());
    fillCarrierAndLanguage();
    fillPlace();
}

void VLUserExtraInfoModel::fillScreen() {
    const auto screen = platform::Screen::main();
    screenWidth = single(screen.size.width * screen.scale);
    screenHeight = single(screen.size.height * screen.scale);
    screenDensity = single(screen.scale * kDensityOfScale1);
    if (isPortrait(screen.orientation)) screenOrientation = 1;
    if (isLandscape(screen.orientation)) screenOrientation = 2;
}

void VLUserExtraInfoModel::fillCarrierAndLanguage() {
    const auto provider = platform::Telephony::subscriberCellularProvider().value_or(platform::Carrier());
    carrier = platform::boxed(provider.name);
    deviceManufacturer = "Apple";
    deviceBrand = "Apple";
    const auto languages = platform::preferredLanguages();
    if (!languages.empty()) deviceLanguage = Property(languages.front());
    mcc = numberOf(provider.mobileCountryCode);
    mnc = numberOf(provider.mobileNetworkCode);
}

void VLUserExtraInfoModel::fillPlace() {
    using platform::LocationManager;
    if (!LocationManager::locationServicesEnabled()) return;
    if (LocationManager::authorizationStatus() == platform::LocationAuthorization::denied) return;
    geoInfo = std::make_shared<GeoInfo>();
    const auto location = std::make_shared<GeoInfoLocationIOS>();
    geoInfo->geoInfoLocation.set(location);
    location->getLocation();
}

const Schema& VLUserExtraInfoModel::schema() const {
    static constexpr Field fields[]{
        plain<&VLUserExtraInfoModel::imei>("imei"),
        plain<&VLUserExtraInfoModel::screenWidth>("screenWidth"),
        plain<&VLUserExtraInfoModel::screenHeight>("screenHeight"),
        plain<&VLUserExtraInfoModel::screenDensity>("screenDensity"),
        plain<&VLUserExtraInfoModel::screenOrientation>("screenOrientation"),
        plain<&VLUserExtraInfoModel::appVersion>("appVersion"),
        plain<&VLUserExtraInfoModel::carrier>("carrier"),
        plain<&VLUserExtraInfoModel::deviceModel>("deviceModel"),
        plain<&VLUserExtraInfoModel::deviceManufacturer>("deviceManufacturer"),
        plain<&VLUserExtraInfoModel::deviceBrand>("deviceBrand"),
        plain<&VLUserExtraInfoModel::deviceLanguage>("deviceLanguage"),
        nested<&VLUserExtraInfoModel::geoInfo>("geoInfo"),
        plain<&VLUserExtraInfoModel::mcc>("mcc"),
        plain<&VLUserExtraInfoModel::mnc>("mnc"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora
