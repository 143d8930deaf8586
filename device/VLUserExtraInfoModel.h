#pragma once

#include "model/AtomicProperty.h"
#include "model/VLSerializedModel.h"

namespace velmora {

class GeoInfo;

/// The device, the host application and the user, as request bodies describe them.
class VLUserExtraInfoModel final : public VLSerializedModel {
public:
    /// The shared description, made anew by every call once there is one; null in this version, in which
    /// nothing makes the first. What the device does not tell is absent; the place is filled in later, if the
    /// user lets it be known. Any thread; waits 50 ms at most for services of the desktop.
    [[nodiscard]] static std::shared_ptr<VLUserExtraInfoModel> getInstance();

    /// What a description says, which may itself be absent: a text, or what a format writes for it.
    [[nodiscard]] static std::optional<std::string> textOf(const std::shared_ptr<VLUserExtraInfoModel>& info,
                                                           Property VLUserExtraInfoModel::*property) {
        return info ? platform::asString((*info).*property) : std::nullopt;
    }
    [[nodiscard]] static std::string formatted(const std::shared_ptr<VLUserExtraInfoModel>& info,
                                               Property VLUserExtraInfoModel::*property) {
        return platform::formatted(info ? (*info).*property : std::nullopt);
    }

    Property imei;
    Property screenWidth;        ///< pixels; 0 without a screen
    Property screenHeight;       ///< pixels; 0 without a screen
    Property screenDensity;      ///< dots per inch: the screen's scale times 160; 0 without a screen
    Property screenOrientation;  ///< 1 portrait, 2 landscape; absent without a screen
    Property appVersion;
    Property carrier;
    Property deviceModel;
    Property deviceManufacturer;
    Property deviceBrand;
    Property deviceLanguage;
    std::shared_ptr<GeoInfo> geoInfo;  ///< absent when the place may not be used
    Property mcc;                      ///< mobile country code
    Property mnc;                      ///< mobile network code

private:
    friend class VLUserExtraInfoModelGate;

    using Slot = AtomicProperty<std::shared_ptr<VLUserExtraInfoModel>>;

    /// Nothing in the library fills it while it is empty.
    [[nodiscard]] static Slot& sharedInstance();

    [[nodiscard]] const Schema& schema() const override;

    void fill();
    void fillScreen();
    void fillCarrierAndLanguage();
    void fillPlace();
};

}  // namespace velmora
