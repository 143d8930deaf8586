#include "device/VLUserExtraInfoModel.h"

#include "device/GeoInfo.h"
#include "model/AtomicProperty.h"
#include "model/Schema.h"
#include "platform/Bundle.h"
#include "platform/Immortal.h"
#include "platform/Mutex.h"

namespace velmora {

namespace {

platform::Mutex VLUserExtraInfoModelLock;

AtomicProperty<std::shared_ptr<VLUserExtraInfoModel>>& shared() {
    static platform::Immortal<AtomicProperty<std::shared_ptr<VLUserExtraInfoModel>>> instance;
    return *instance;
}

/// What the device tells of itself and of its host.
std::shared_ptr<VLUserExtraInfoModel> filled() {
    auto info = std::make_shared<VLUserExtraInfoModel>();
    info->appVersion = platform::boxed(platform::Bundle::main().version());
    info->deviceManufacturer = "Apple";
    info->deviceBrand = "Apple";
    return info;
}

}  // namespace

std::shared_ptr<VLUserExtraInfoModel> VLUserExtraInfoModel::getInstance() {
    if (!shared().get()) return nullptr;
    const platform::MutexLock lock(VLUserExtraInfoModelLock);
    if (shared().get()) shared().set(filled());
    return shared().get();
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
